// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>
#include <optional>

#include "app/commands/commands.h"
#include "app/commands/dashed_text.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/commands/text_arguments.h"
#include "app/commands/text_measures.h"
#include "app/operations/text/text_check.h"
#include "app/operations/text/text_source.h"
#include "app/operations/text/text_writers.h"
#include "app/services/font_file.h"
#include "base/budget.h"
#include "base/file.h"
#include "base/memory_watch.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

constexpr int kBold = 700;

TextFormat FormatOf(std::string_view name) {
    constexpr std::pair<std::string_view, TextFormat> kEndings[] = {
        {".svg", TextFormat::kSvg},   {".dxf", TextFormat::kDxf},   {".glb", TextFormat::kGltf},
        {".gltf", TextFormat::kGltf}, {".json", TextFormat::kJson}, {".obj", TextFormat::kObj},
        {".stl", TextFormat::kStl}};
    for (const auto& [ending, format] : kEndings) {
        if (HasEnding(name, ending)) return format;
    }
    throw UsageError(Join(name, ": the name must end in .svg, .dxf, .glb, .gltf, .json, .obj or .stl"));
}

TextStyle StyleOf(const TextArguments& arguments) {
    const bool isSolid = arguments.drawing.depth > 0;
    if (arguments.style.empty()) return isSolid ? TextStyle::kMesh : TextStyle::kOutline;
    if (isSolid && arguments.style != "mesh")
        throw UsageError("--depth needs a mesh, not --style " + arguments.style);
    if (arguments.style == "stroke") return TextStyle::kStroke;
    return arguments.style == "mesh" ? TextStyle::kMesh : TextStyle::kOutline;
}

void CheckFormat(const std::string& target, TextFormat format, TextStyle style, bool isSolid) {
    if (format == TextFormat::kObj && style != TextStyle::kMesh)
        throw UsageError(target + ": an .obj file holds a mesh: give --style mesh");
    if (format == TextFormat::kStl && !isSolid)
        throw UsageError(target + ": an .stl file holds a solid: give --depth");
    if (format == TextFormat::kSvg && isSolid)
        throw UsageError(target + ": an .svg file cannot hold a solid: omit --depth");
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

// Refuses what the module would silently draw wrong, or notes it when the user accepts substitutes.
void RefuseOrNote(const std::vector<TextShortcoming>& shortcomings, bool isAccepted, Report& report) {
    for (const auto& [what, instead] : shortcomings) {
        if (!isAccepted) throw std::runtime_error(Join(what, "; --substitute accepts ", instead));
        report.notes.push_back(Join(what, ": ", instead));
    }
}

// The text of a file, or of standard input. Much more could not be drawn within the budget.
std::u16string ReadText(const Session& session, const std::string& file) {
    constexpr std::uint64_t kLeastForEachByte = 8;
    const std::uint64_t limit = Budget(session.Options().load.maxMemory).Total() / kLeastForEachByte;
    if (file == kStandardStream) return DecodeTextFile(ReadStandardInput(limit), "standard input");
    return DecodeTextFile(ReadFile(PathFromUtf8(file), limit).View(), file);
}

class Drawer {
public:
    Drawer(Session& session, const TextArguments& arguments)
        : m_session(session),
          m_arguments(arguments),
          m_style(StyleOf(arguments)),
          m_font(FontOf(arguments)) {}

    // target: empty when only measures are wanted.
    Report Run(const std::u16string& text, const std::string& target) const {
        const bool isStandard = target == kStandardStream;
        const std::string ending = isStandard ? EndingOf(m_arguments.files.format) : target;
        const TextFormat format = target.empty() ? TextFormat::kJson : FormatOf(ending);
        if (!target.empty()) CheckFormat(target, format, m_style, m_arguments.drawing.depth > 0);
        CheckPageFile(m_session, m_arguments.page, {target});

        Report report;
        RefuseOrNote(m_style == TextStyle::kStroke ? CheckStrokeText(text) : CheckFontText(text, m_font),
                     m_arguments.acceptsSubstitutes, report);
        RequireRoom(text);
        if (NeedsShaping(text)) {
            report.notes.push_back(
                "the text has right-to-left characters, which are drawn one by one from left to right");
        }
        std::optional<OutputTarget> out;
        if (!target.empty()) {
            out.emplace(m_session, target, ending);
            if (m_arguments.files.IsSingle()) report.json.Set("output", target);
        }
        const bool isDrawing =
            m_arguments.isDrawing || m_arguments.wantsMetrics || format == TextFormat::kDxf;
        const TextDrawing drawing = Draw(text, isDrawing, m_arguments.drawing);
        report.json.Set("points", drawing.geometry.points.size());
        report.json.Set("contours", drawing.geometry.contours.size());
        report.json.Set("triangles", drawing.geometry.triangles.size());
        if (m_arguments.wantsMetrics) {
            const JsonObject metrics = MetricsJson(drawing);
            report.json.Set("metrics", metrics);
            report.text = metrics.PrettyText();
            report.isAnswer = true;
        }
        m_session.ThrowIfStopped();
        RequireMemory();
        if (out) {
            WriteText(drawing.geometry, format, out->Path(), out->Files());
            out->Commit(m_session);
        }
        if (!m_arguments.page.empty())
            WritePage(m_arguments.page, target, [&] { return PageOf(text, isDrawing, drawing); });
        return report;
    }

private:
    TextRequest RequestOf(const std::u16string& text) const {
        return {text, m_style, m_font, m_arguments.size};
    }

    void RequireRoom(const std::u16string& text) const {
        Budget budget(m_session.Options().load.maxMemory);
        budget.AddInput(text.size());
        if (!budget.Take(MemoryOf(RequestOf(text), m_arguments.drawing.depth > 0)))
            throw std::runtime_error(
                Join("the text needs more memory than the budget of ", budget.Total() >> 20, " MiB"));
    }

    TextDrawing Draw(const std::u16string& text, bool isDrawing, const DrawingOptions& options) const {
        const TextRequest request = RequestOf(text);
        if (isDrawing) return MakeDrawing(m_session.GetHost(), request, options);
        return {MakeText(m_session.GetHost(), request), {}};
    }

    // A solid is shown as a scene, and its front as the drawing.
    report::Page PageOf(const std::u16string& text, bool isDrawing, const TextDrawing& drawing) const {
        report::Page page;
        page.kind = "text";
        page.title = "text: " + kernix::ToUtf8(text);
        page.measures = MeasuresOf(drawing);
        if (drawing.geometry.isSolid) {
            page.scenes.push_back({"text", TextScene(drawing.geometry), {}});
            DrawingOptions flat = m_arguments.drawing;
            flat.depth = 0;
            page.drawing = TextPicture(Draw(text, isDrawing, flat).geometry);
        } else {
            page.drawing = TextPicture(drawing.geometry);
        }
        return page;
    }

    Session& m_session;
    const TextArguments& m_arguments;
    TextStyle m_style;
    TextFont m_font;
};

int RunSingle(Session& session, const TextArguments& arguments) {
    std::vector<std::string> names = arguments.files.files;
    const std::size_t most = arguments.file.empty() ? 2 : 1;
    const std::size_t least = most - (arguments.wantsMetrics ? 1 : 0);
    if (names.size() < least || names.size() > most)
        throw UsageError(most == 1 ? "text: give OUT and no TEXT with --file" : "text: give TEXT and OUT");
    std::string target;
    if (names.size() == most) {
        target = names.back();
        names.pop_back();
    }
    const bool isStandard = target == kStandardStream;
    if (isStandard == arguments.files.format.empty())
        throw UsageError(isStandard ? "standard output needs --format"
                                    : "--format is for --out-dir and for standard output");
    if (isStandard && arguments.wantsMetrics) throw UsageError("--metrics also prints to standard output");
    const Drawer drawer(session, arguments);
    const std::u16string text = arguments.file.empty() ? DecodeText(UnmarkedText(names.front()), "TEXT")
                                                       : ReadText(session, arguments.file);
    const Report report = drawer.Run(text, target);
    try {
        PrintReport(session, "text", report);
    } catch (const std::bad_alloc&) {
        if (target.empty()) throw;
        throw ReportLost();  // the drawing was written, only the measures are lost
    }
    return 0;
}

// Draws each file as a text of its own.
int RunMany(Session& session, const TextArguments& arguments) {
    if (!arguments.file.empty()) throw UsageError("--out-dir takes text files as operands, not --file");
    if (arguments.files.format.empty()) throw UsageError("--out-dir needs --format");
    if (!arguments.page.empty() || arguments.wantsMetrics)
        throw UsageError("--report and --metrics are for one text: TEXT OUT");
    const std::vector<Task> tasks = PlanTasks(arguments.files, kTextFiles);
    const Drawer drawer(session, arguments);
    return RunBatch(session, "text", arguments.files, tasks, [&](const Task& task, const Advance& advance) {
        advance(0);
        return drawer.Run(ReadText(session, task.input), task.output);
    });
}

}  // namespace

void AddTextCommand(CLI::App& app, Session& session) {
    CLI::App* command =
        app.add_subcommand("text", "Turn text into strokes, outlines, a flat mesh or a solid");
    const auto arguments = std::make_shared<TextArguments>();
    AddTextOptions(*command, *arguments);
    AddExamples(
        *command,
        {{"text \"M8 x 20\" plate.dxf --units mm --cap-height 5", "Outlines to cut."},
         {"text \"M8 x 20\" plate.svg --style stroke --units mm --cap-height 5", "Strokes to engrave."},
         {"text Hello sign.stl --cap-height 20 --depth 3 --bold", "A solid to print."},
         {"text --out-dir cut --format dxf --cap-height 5 labels", "A drawing for each text."}});
    command->callback([arguments, &session] {
        Finish(*arguments);
        session.SetCommand([arguments, &session] {
            return arguments->files.IsSingle() ? RunSingle(session, *arguments)
                                               : RunMany(session, *arguments);
        });
    });
}

}  // namespace zr
