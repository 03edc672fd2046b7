// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

#include "app/commands/commands.h"
#include "app/commands/dashed_text.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/text/length_unit.h"
#include "app/operations/text/text_check.h"
#include "app/operations/text/text_drawing.h"
#include "app/operations/text/text_source.h"
#include "app/operations/text/text_writers.h"
#include "app/services/font_file.h"
#include "base/file.h"
#include "base/text.h"

namespace zr {
namespace {

constexpr int kBold = 700;

struct TextArguments {
    std::vector<std::string> names;  // TEXT OUT, or OUT with a file
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
    bool isDrawing = false;  // one of the options that only a drawing has was given
    bool wantsMetrics = false;
};

TextFormat FormatOf(const std::string& target) {
    constexpr std::pair<std::string_view, TextFormat> kEndings[] = {
        {".svg", TextFormat::kSvg},   {".dxf", TextFormat::kDxf},   {".glb", TextFormat::kGltf},
        {".gltf", TextFormat::kGltf}, {".json", TextFormat::kJson}, {".obj", TextFormat::kObj},
        {".stl", TextFormat::kStl}};
    for (const auto& [ending, format] : kEndings) {
        if (HasEnding(target, ending)) return format;
    }
    throw UsageError(target + ": the name must end in .svg, .dxf, .glb, .gltf, .json, .obj or .stl");
}

TextStyle StyleOf(const TextArguments& arguments) {
    const bool isSolid = arguments.drawing.depth > 0;
    if (arguments.style.empty()) return isSolid ? TextStyle::kMesh : TextStyle::kOutline;
    if (isSolid && arguments.style != "mesh")
        throw UsageError("--depth: only a mesh can be deep, not --style " + arguments.style);
    if (arguments.style == "stroke") return TextStyle::kStroke;
    return arguments.style == "mesh" ? TextStyle::kMesh : TextStyle::kOutline;
}

void CheckFormat(const std::string& target, TextFormat format, TextStyle style, bool isSolid) {
    if (format == TextFormat::kObj && style != TextStyle::kMesh)
        throw UsageError(target + ": a .obj takes a mesh, give --style mesh");
    if (format == TextFormat::kStl && !isSolid)
        throw UsageError(target + ": a .stl takes a solid, give --depth");
    if (format == TextFormat::kSvg && isSolid)
        throw UsageError(target + ": a .svg takes no solid, leave --depth out");
}

// The text and the file to write, which may be left out where only measures are wished.
struct Operands {
    std::u16string text;
    std::string target;
};

Operands OperandsOf(const TextArguments& arguments) {
    std::vector<std::string> names = arguments.names;
    const std::size_t most = arguments.file.empty() ? 2 : 1;
    const std::size_t least = most - (arguments.wantsMetrics ? 1 : 0);
    if (names.size() < least || names.size() > most)
        throw UsageError(most == 1 ? "text: give OUT and no TEXT with --file" : "text: give TEXT and OUT");
    Operands operands;
    if (names.size() == most) {
        operands.target = names.back();
        names.pop_back();
    }
    operands.text = arguments.file.empty() ? DecodeText(UnmarkedText(names.front()), "TEXT")
                                           : ReadTextFile(PathFromUtf8(arguments.file));
    return operands;
}

TextFont FontOf(const TextArguments& arguments) {
    TextFont font{DecodeText(arguments.font, "--font"), arguments.height};
    if (!arguments.fontFile.empty()) {
        const FontFileNames names = AddFontFile(PathFromUtf8(arguments.fontFile));
        if (font.family.empty()) font.family = names.family;
        font.weight = names.weight;
        font.isItalic = names.isItalic;
    }
    if (arguments.isBold) font.weight = kBold;
    if (arguments.isItalic) font.isItalic = true;
    if (font.family.size() > kLongestFamily)
        throw UsageError("--font: the name is longer than 31 characters");
    return font;
}

// What the module would draw wrong without a word: refused, or told about where the user accepts it.
void Tell(const std::vector<TextShortcoming>& shortcomings, bool isAccepted, Report& report) {
    for (const auto& [what, instead] : shortcomings) {
        if (!isAccepted) throw std::runtime_error(Join(what, "; --substitute accepts ", instead));
        report.notes.push_back(Join(what, ": ", instead));
    }
}

JsonObject PointJson(const TextGeometry::Point& p) {
    return JsonObject().Set("x", p.x).Set("y", p.y).Set("z", p.z);
}

JsonObject MetricsJson(const TextDrawing& drawing) {
    const TextMetrics& metrics = drawing.metrics;
    const TextBox box = BoxOf(drawing.geometry.points);
    JsonObject json, bounds;
    if (drawing.geometry.unit != LengthUnit::kNone) json.Set("units", InfoOf(drawing.geometry.unit).name);
    bounds.Set("min", PointJson(box.low)).Set("max", PointJson(box.high));
    json.Set("bounds", bounds).Set("capHeight", metrics.capHeight).Set("lineDistance", metrics.lineDistance);
    JsonArray lines;
    for (const TextMetrics::Line& line : metrics.lines) {
        JsonArray characters;
        for (const TextMetrics::Character& c : line.characters) {
            characters.Append(JsonObject()
                                  .Set("letter", c.position)
                                  .Set("code", static_cast<int>(c.code))
                                  .Set("x", c.x)
                                  .Set("advance", c.advance));
        }
        lines.Append(JsonObject()
                         .Set("x", line.x)
                         .Set("baseline", line.baseline)
                         .Set("advance", line.advance)
                         .Set("characters", characters));
    }
    return json.Set("lines", lines);
}

TextDrawing Draw(const TextArguments& arguments, const TextRequest& request, bool isDrawing,
                 Session& session) {
    if (isDrawing) return MakeDrawing(session.GetHost(), request, arguments.drawing);
    return {MakeText(session.GetHost(), request), {}};
}

int RunText(const TextArguments& arguments, Session& session) {
    const TextStyle style = StyleOf(arguments);
    const auto& [text, target] = OperandsOf(arguments);
    const TextFormat format = target.empty() ? TextFormat::kJson : FormatOf(target);
    if (!target.empty()) CheckFormat(target, format, style, arguments.drawing.depth > 0);
    const TextRequest request{text, style, FontOf(arguments), arguments.size};

    Report report;
    Tell(style == TextStyle::kStroke ? CheckStrokeText(text) : CheckFontText(text, request.font),
         arguments.acceptsSubstitutes, report);
    if (NeedsShaping(text)) {
        report.notes.push_back(
            "the text has characters of right-to-left writing, which are drawn one by one from left to "
            "right");
    }
    const bool isDrawing = arguments.isDrawing || arguments.wantsMetrics || format == TextFormat::kDxf;
    std::optional<OutputTarget> out;
    if (!target.empty()) {
        out.emplace(session, target, "");
        report.json.Set("output", target);
    }
    const TextDrawing drawing = Draw(arguments, request, isDrawing, session);
    const TextGeometry& geometry = drawing.geometry;
    session.ThrowIfStopped();
    if (out) WriteText(geometry, format, out->Path());
    report.json.Set("points", geometry.points.size()).Set("contours", geometry.contours.size());
    report.json.Set("triangles", geometry.triangles.size());
    if (arguments.wantsMetrics) {
        const JsonObject metrics = MetricsJson(drawing);
        report.json.Set("metrics", metrics);
        report.text = metrics.PrettyText();
        report.isAnswer = true;
    }
    PrintReport(session, "text", report);
    return 0;
}

constexpr const char* kFontGroup = "Font";
constexpr const char* kDrawingGroup = "Drawing, laid out in lines";
constexpr Range kSizes{1e-3, 1e6};
constexpr const char* kUnits = "UNITS";

void AddFontOptions(CLI::App& command, TextArguments& arguments) {
    command.add_option("--font", arguments.font, "Family name; else the system's own choice")
        ->type_name("NAME")
        ->group(kFontGroup);
    command
        .add_option("--font-file", arguments.fontFile,
                    "Draw with the font of this file, TrueType or OpenType; --font chooses among several")
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
                  "Take the nearest font, or the font's replacement character, for what is missing")
        ->group(kFontGroup);
}

void AddDrawingOptions(CLI::App& command, TextArguments& arguments) {
    const auto add = [&arguments](CLI::Option* option) {
        return option->group(kDrawingGroup)->each([&arguments](auto) { arguments.isDrawing = true; });
    };
    DrawingOptions& drawing = arguments.drawing;
    add(AddChoice(command, "--align", arguments.align, {"left", "center", "right"},
                  "Where lines stand: they start, have their middle, or end at 0"));
    add(AddNumber(command, "--line-spacing", drawing.lineSpacing, {0, 100}, "TIMES",
                  "Distance of lines, in distances of the font's own"));
    add(AddChoice(command, "--units", arguments.unit, {"mm", "cm", "in"},
                  "What a unit of the coordinates is"));
    add(AddNumber(command, "--cap-height", drawing.capHeight, kSizes, kUnits, "Height of a capital H"))
        ->excludes("--size");
    add(AddNumber(command, "--depth", drawing.depth, kSizes, kUnits, "Make a closed solid of this depth"));
    command
        .add_flag("--metrics", arguments.wantsMetrics,
                  "Print advances, places and bounds as JSON; OUT may then be left out")
        ->group(kDrawingGroup);
}

void Settle(TextArguments& arguments) {
    constexpr std::pair<std::string_view, TextAlign> kAligns[] = {
        {"left", TextAlign::kLeft}, {"center", TextAlign::kCenter}, {"right", TextAlign::kRight}};
    for (const auto& [name, align] : kAligns) {
        if (arguments.align == name) arguments.drawing.align = align;
    }
    for (const LengthUnit unit : {LengthUnit::kMillimetre, LengthUnit::kCentimetre, LengthUnit::kInch}) {
        if (arguments.unit == InfoOf(unit).name) arguments.drawing.unit = unit;
    }
}

}  // namespace

void AddTextCommand(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("text", "Turns text into strokes, outlines, a flat mesh or a solid");
    const auto arguments = std::make_shared<TextArguments>();
    command
        ->add_option(
            "names", arguments->names,
            "The text, and the file to write: .svg, .dxf, .glb, .gltf, .json, .obj for a mesh or .stl "
            "for a solid")
        ->type_name("TEXT OUT")
        ->expected(1, 2);
    command->add_option("--file", arguments->file,
                        "Read the text, UTF-8, from this file; then only OUT is given");
    command
        ->add_option("--style", arguments->style,
                     "Single strokes, closed outlines (the default) or triangles (with --depth)")
        ->check(CLI::IsMember({"stroke", "outline", "mesh"}));
    AddFontOptions(*command, *arguments);
    AddDrawingOptions(*command, *arguments);
    AddExamples(*command, {{"text \"M8 x 20\" plate.dxf --units mm --cap-height 5", "Outlines to cut."},
                           {"text \"M8 x 20\" plate.svg --style stroke --units mm --cap-height 5",
                            "Strokes to engrave."},
                           {"text Hello sign.stl --cap-height 20 --depth 3 --bold", "A solid to print."}});
    command->callback([arguments, &session] {
        Settle(*arguments);
        session.SetCommand([arguments, &session] { return RunText(*arguments, session); });
    });
}

}  // namespace zr
