// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/text/make_text.h"

namespace zr {

enum class TextAlign { kLeft, kCenter, kRight };

struct DrawingOptions {
    TextAlign align = TextAlign::kLeft;
    double lineSpacing = 1;  // times the font's own: 1.2 times the font's height, 29 units of strokes
    double capHeight = 0;    // height of a capital H, to which all is scaled; 0: as font and size give it
    double depth = 0;        // of a solid, for meshes; 0: flat
    LengthUnit unit = LengthUnit::kNone;
};

// Where the pen stands, in the drawing's units.
struct TextMetrics {
    struct Character {
        std::size_t position;  // in the text, in UTF-16 units
        char16_t code;
        double x;
        double advance;
    };
    struct Line {
        double x;
        double baseline;
        double advance;
        std::vector<Character> characters;
    };

    double capHeight;
    double lineDistance;
    std::vector<Line> lines;
};

struct TextDrawing {
    TextGeometry geometry;
    TextMetrics metrics;
};

// The text laid out in lines from top to bottom, the last baseline at y = 0. Lines start, are centred, or end
// at x = 0. Letters are placed by their advance widths and share no points. Throws std::runtime_error when
// the text cannot be made, or the font has no H to measure.
TextDrawing MakeDrawing(Host& host, const TextRequest& request, const DrawingOptions& options);

}  // namespace zr
