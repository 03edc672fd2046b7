// SPDX-License-Identifier: MIT
#include "app/commands/text_arguments.h"

#include <CLI/CLI.hpp>

#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/operations/text/length_unit.h"

namespace zr {
namespace {

constexpr const char* kFontGroup = "Font";
constexpr const char* kDrawingGroup = "Drawing, laid out in lines";
constexpr Range kSizes{1e-3, 1e6};
constexpr const char* kUnits = "UNITS";

void AddFontOptions(CLI::App& command, TextArguments& arguments) {
    command.add_option("--font", arguments.font, "Family name; default: the system's choice")
        ->type_name("NAME")
        ->group(kFontGroup);
    command
        .add_option("--font-file", arguments.fontFile,
                    "Draw with the font in this TrueType or OpenType file; --font chooses among several")
        ->type_name(kFileType)
        ->group(kFontGroup);
    command.add_flag("--bold", arguments.isBold, "The bold face")->group(kFontGroup);
    command.add_flag("--italic", arguments.isItalic, "The italic face")->group(kFontGroup);
    AddNumber(command, "--height", arguments.height, {-2000, 2000}, kUnits,
              "Font height: of the em square when below 0, of the line's cell above 0")
        ->capture_default_str()
        ->group(kFontGroup);
    AddNumber(command, "--size", arguments.size, kSizes, kUnits,
              "Text size; 12 gives the device units of the ten times enlarged font")
        ->capture_default_str()
        ->group(kFontGroup);
    command
        .add_flag("--substitute", arguments.acceptsSubstitutes,
                  "Use the nearest font, or the font's replacement character, for what is missing")
        ->group(kFontGroup);
}

void AddDrawingOptions(CLI::App& command, TextArguments& arguments) {
    const auto add = [&arguments](CLI::Option* option) {
        return option->group(kDrawingGroup)->each([&arguments](auto) { arguments.isDrawing = true; });
    };
    DrawingOptions& drawing = arguments.drawing;
    add(AddChoice(command, "--align", arguments.align, {"left", "center", "right"},
                  "Whether lines start, are centred or end at 0"));
    add(AddNumber(command, "--line-spacing", drawing.lineSpacing, {0, 100}, "TIMES",
                  "Line distance, as a multiple of the font's own"));
    add(AddChoice(command, "--units", arguments.unit, {"mm", "cm", "in"}, "Unit of the coordinates"));
    add(AddNumber(command, "--cap-height", drawing.capHeight, kSizes, kUnits, "Height of a capital H"))
        ->excludes("--size");
    add(AddNumber(command, "--depth", drawing.depth, kSizes, kUnits, "Make a closed solid of this depth"));
    command
        .add_flag("--metrics", arguments.wantsMetrics,
                  "Print advances, positions and bounds as JSON; OUT may then be left out")
        ->group(kDrawingGroup);
}

}  // namespace

void Finish(TextArguments& arguments) {
    constexpr std::pair<std::string_view, TextAlign> kAligns[] = {
        {"left", TextAlign::kLeft}, {"center", TextAlign::kCenter}, {"right", TextAlign::kRight}};
    for (const auto& [name, align] : kAligns) {
        if (arguments.align == name) arguments.drawing.align = align;
    }
    for (const LengthUnit unit : {LengthUnit::kMillimetre, LengthUnit::kCentimetre, LengthUnit::kInch}) {
        if (arguments.unit == InfoOf(unit).name) arguments.drawing.unit = unit;
    }
}

void AddTextOptions(CLI::App& command, TextArguments& arguments) {
    AddBatchOptions(
        command, arguments.files, kTextFiles, "TEXT OUT",
        "The text, and the file to write: .svg, .dxf, .glb, .gltf, .json, .obj for a mesh or .stl "
        "for a solid; - is standard output");
    command
        .add_option("--file", arguments.file,
                    "Read the text, in UTF-8, from this file (- for standard input); give only OUT then")
        ->type_name(kFileType);
    AddChoice(command, "--style", arguments.style, {"stroke", "outline", "mesh"},
              "Single strokes, closed outlines (the default) or triangles (the default with --depth)");
    AddFontOptions(command, arguments);
    AddDrawingOptions(command, arguments);
    AddPageOption(command, arguments.page, "Also write a page (.html) that shows the text and its measures");
}

}  // namespace zr
