// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/text/make_text.h"

namespace zr {

enum class TextAlign { kLeft, kCenter, kRight };

struct DrawingOptions {
    TextAlign align = TextAlign::kLeft;
    double lineSpacing = 1;  // relative to the default: 1.2 times the height of the font, or 29 stroke units
    double capHeight = 0;    // height of a capital H, to which the text is scaled; 0: set by font and size
    double depth = 0;        // of solids, for meshes only; 0: flat
    LengthUnit unit = LengthUnit::kNone;
};

// Positions and widths of lines and characters, in the units of the drawing.
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

// Lays out a text in lines from top to bottom, the last baseline at y = 0. Lines start at, are centred on, or
// end at x = 0. Letters are placed by their advance widths and share no points. Throws std::runtime_error if
// the module fails, and for options.capHeight if the font has no H to measure.
TextDrawing MakeDrawing(Host& host, const TextRequest& request, const DrawingOptions& options);

}  // namespace zr
