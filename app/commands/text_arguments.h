// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/batch.h"
#include "app/operations/text/text_drawing.h"

namespace zr {

// The command line of `zr text`.
struct TextArguments {
    BatchArguments files;  // TEXT OUT, OUT with --file, or texts to read with --out-dir
    std::string file;
    std::string style;
    std::string font;
    std::string fontFile;
    bool isBold = false;
    bool isItalic = false;
    int height = -12;
    double size = 12;
    bool acceptsSubstitutes = false;
    std::string align = "left";
    std::string unit;
    DrawingOptions drawing;
    bool isDrawing = false;  // an option that only a drawing has was given
    bool wantsMetrics = false;
    std::string page;
};

inline const BatchFiles kTextFiles{{".txt"}, {"svg", "dxf", "glb", "gltf", "json", "obj", "stl"}};

void AddTextOptions(CLI::App& command, TextArguments& arguments);
// Converts the words of --align and --units into drawing options. Call once the command line has been parsed.
void Finish(TextArguments& arguments);

}  // namespace zr
