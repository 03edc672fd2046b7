// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <set>

#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/text/text_geometry.h"
#include "base/file.h"
#include "kernix/utf.h"
#include "platform/windows.h"

namespace zr {
namespace {

using vl::zr::legacy::CadText;
using vl::zr::legacy::GlyphContour;
using vl::zr::legacy::GlyphTesselated;

struct TextOptions {
    std::vector<std::string> names;  // TEXT OUT, or OUT with a file
    std::string file;
    std::string style = "outline";
    std::string font;
    bool bold = false;
    bool italic = false;
    int height = -12;  // of the font record; the module draws ten times as large
    double size = 12;  // size 12 keeps the enlarged font's device units
    bool substitute = false;
};

TextFormat FormatOf(const std::filesystem::path& target, bool isMesh) {
    std::string ending = PathToUtf8(target.extension());
    for (char& c : ending) c = vl::FoldCase(c);
    if (ending == ".svg") return TextFormat::kSvg;
    if (ending == ".glb" || ending == ".gltf") return TextFormat::kGltf;
    if (ending == ".json") return TextFormat::kJson;
    if (ending != ".obj")
        throw UsageError(PathToUtf8(target) + ": the name must end in .svg, .glb, .gltf, .json or .obj");
    if (!isMesh) throw UsageError(PathToUtf8(target) + ": a .obj takes a mesh, give --style mesh");
    return TextFormat::kObj;
}

constexpr std::uint64_t kMaxText = std::uint64_t{4} << 20;  // bytes of a text file

// A file's lines end as the module breaks lines: with a carriage return and a line feed.
std::u16string ReadText(const std::string& file) {
    const FileContent content = ReadFile(PathFromUtf8(file), kMaxText);
    std::string text;
    for (const std::byte byte : content.View()) {
        const auto c = static_cast<char>(byte);
        if (c == '\n' && !text.ends_with('\r')) text += '\r';
        text += c;
    }
    if (text.starts_with("\xEF\xBB\xBF")) text.erase(0, 3);
    return kernix::ToUtf16(text);
}

// "U+00E9", for a position in UTF-16 text.
std::string NameOf(std::u16string_view text, std::size_t at) {
    unsigned code = text[at];
    if (code >= 0xD800 && code < 0xDC00 && at + 1 < text.size()) {
        code = 0x10000 + ((code - 0xD800) << 10) + (text[at + 1] - 0xDC00u);
    }
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", code);
    return name;
}

// What the module would draw wrong without a word: refused, or told about where the user accepts it.
class Shortcomings {
public:
    explicit Shortcomings(bool accepted) : m_accepted(accepted) {}

    void Report(const std::string& what, const std::string& instead) const {
        if (!m_accepted) throw std::runtime_error(what + "; --substitute accepts " + instead);
        std::fprintf(stderr, "zr: %s: %s\n", what.c_str(), instead.c_str());
    }

private:
    bool m_accepted;
};

void CheckStrokeText(std::u16string_view text, const Shortcomings& shortcomings) {
    std::set<char16_t> seen;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if ((c >= 32 && c <= 126) || c == u'\r' || c == u'\n' || !seen.insert(c).second) continue;
        if (c >= 0xDC00 && c < 0xE000) continue;
        shortcomings.Report("the stroke font has no character " + NameOf(text, i), "leaving it out");
    }
}

// The font as the system has it, at the size at which the module asks for it.
class SystemFont {
public:
    explicit SystemFont(LOGFONTW font) : m_dc(GetDC(nullptr)) {
        font.lfHeight *= 10;
        m_font = CreateFontIndirectW(&font);
        if (m_font) m_previous = SelectObject(m_dc, m_font);
    }
    ~SystemFont() {
        if (m_font) SelectObject(m_dc, m_previous);
        ReleaseDC(nullptr, m_dc);
        DeleteObject(m_font);
    }
    SystemFont(const SystemFont&) = delete;
    SystemFont& operator=(const SystemFont&) = delete;

    bool Exists() const { return m_font != nullptr; }

    std::u16string Family() const {
        char16_t name[256] = {};
        GetTextFaceW(m_dc, static_cast<int>(std::size(name)), name);
        return name;
    }

    bool Has(char16_t c) const {
        WORD glyph = 0;
        return GetGlyphIndicesW(m_dc, &c, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS) == 1 && glyph != 0xFFFF;
    }

    bool CanDraw(char16_t c) const {
        const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
        GLYPHMETRICS metrics;
        return GetGlyphOutlineA(m_dc, c, GGO_NATIVE, &metrics, 0, nullptr, &identity) != GDI_ERROR;
    }

private:
    HDC m_dc;
    HFONT m_font = nullptr;
    HGDIOBJ m_previous = nullptr;
};

void CheckFontText(std::u16string_view text, const LOGFONTW& record, const Shortcomings& shortcomings) {
    const SystemFont font(record);
    if (!font.Exists()) throw std::runtime_error("the system has no outline font");
    const std::u16string family = font.Family();
    const std::string name = kernix::ToUtf8(family);
    if (record.lfFaceName[0] != 0 && vl::CompareNoCase(family.c_str(), record.lfFaceName) != 0) {
        shortcomings.Report("the font \"" + kernix::ToUtf8(record.lfFaceName) + "\" is not installed",
                            "\"" + name + "\"");
    }
    std::set<char16_t> seen;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t c = text[i];
        if (c == u'\r' || c == u'\n' || !seen.insert(c).second) continue;
        if (!font.Has(c)) {
            shortcomings.Report("the font \"" + name + "\" has no character " + NameOf(text, i),
                                "its replacement");
            if (c >= 0xD800 && c < 0xDC00) ++i;
        }
        if (!font.CanDraw(c)) {
            throw std::runtime_error("the font \"" + name + "\" has no outline of " + NameOf(text, i) +
                                     " at this height");
        }
    }
}

LOGFONTW FontRecord(const TextOptions& options) {
    LOGFONTW font{};
    font.lfHeight = options.height;
    font.lfWeight = options.bold ? FW_BOLD : FW_NORMAL;
    font.lfItalic = options.italic;
    const std::u16string face = kernix::ToUtf16(options.font);
    if (face.size() >= LF_FACESIZE) throw UsageError("--font: the name is longer than 31 characters");
    std::copy(face.begin(), face.end(), font.lfFaceName);
    return font;
}

TextGeometry FromContours(GlyphContour& contours) {
    TextGeometry geometry;
    for (int k = 0; k < contours.GetContourCount(); ++k) {
        const int count = contours.GetPointCount(k);
        if (count == 0) continue;
        geometry.contours.push_back({static_cast<std::uint32_t>(geometry.points.size()),
                                     static_cast<std::uint32_t>(count), contours.GetLetterIndex(k)});
        geometry.points.insert(geometry.points.end(), contours.GetPoints(k), contours.GetPoints(k) + count);
    }
    return geometry;
}

TextGeometry FromMesh(GlyphTesselated& mesh) {
    TextGeometry geometry;
    geometry.isMesh = true;
    geometry.points.assign(mesh.GetVertices(), mesh.GetVertices() + mesh.GetVertexCount());
    geometry.triangles.assign(mesh.GetTriangles(), mesh.GetTriangles() + mesh.GetTriangleCount());
    return geometry;
}

TextGeometry MakeGeometry(const TextOptions& options, const std::u16string& text, const LOGFONTW& font,
                          Session& session) {
    const auto cadText = session.GetHost().Create<CadText>(kTypeCadText);
    const char* const failure = "the text could not be made into geometry";
    if (options.style == "mesh") {
        const auto mesh = vl::Ref<GlyphTesselated>::Adopt(
            cadText->CreatePolygons(text.c_str(), font, options.size, nullptr));
        if (!mesh) throw std::runtime_error(failure);
        return FromMesh(*mesh);
    }
    const auto contours = vl::Ref<GlyphContour>::Adopt(
        options.style == "stroke"
            ? cadText->CreateStrokeContours(text.c_str(), font, options.size, nullptr)
            : cadText->CreateOutlineContours(text.c_str(), font, options.size, nullptr));
    if (!contours) throw std::runtime_error(failure);
    return FromContours(*contours);
}

int RunText(const TextOptions& options, Session& session) {
    const bool hasFile = !options.file.empty();
    if (options.names.size() != (hasFile ? 1 : 2)) {
        throw UsageError(hasFile ? "text: give OUT and no TEXT with --file" : "text: give TEXT and OUT");
    }
    const std::filesystem::path target = PathFromUtf8(options.names.back());
    const TextFormat format = FormatOf(target, options.style == "mesh");
    const LOGFONTW font = FontRecord(options);
    const std::u16string text = hasFile ? ReadText(options.file) : kernix::ToUtf16(options.names.front());
    if (text.find(u'\0') != text.npos) throw std::runtime_error("the text has a zero character in it");

    const Shortcomings shortcomings(options.substitute);
    if (options.style == "stroke") {
        CheckStrokeText(text, shortcomings);
    } else {
        CheckFontText(text, font, shortcomings);
    }
    OutputTarget out(session, options.names.back(), PathToUtf8(target.extension()));
    TextGeometry geometry = MakeGeometry(options, text, font, session);
    // A hundredth of a line, about.
    if (options.style != "stroke") geometry.penWidth = std::abs(options.height) * options.size / 144;
    session.ThrowIfStopped();
    WriteText(geometry, format, out.Path());
    Report report;
    report.json.Set("output", options.names.back()).Set("points", geometry.points.size());
    report.json.Set("contours", geometry.contours.size()).Set("triangles", geometry.triangles.size());
    PrintReport(session, "text", report);
    return 0;
}

}  // namespace

void AddTextCommand(CLI::App& app, Session& session) {
    CLI::App* command = app.add_subcommand("text", "Turns text into strokes, outlines or a flat mesh");
    const auto options = std::make_shared<TextOptions>();
    command
        ->add_option("names", options->names,
                     "The text, and the file to write: .svg, .glb, .gltf, .json, or .obj for a mesh")
        ->type_name("TEXT OUT")
        ->expected(1, 2)
        ->required();
    command->add_option("--file", options->file,
                        "Read the text, UTF-8, from this file; then only OUT is given");
    command->add_option("--style", options->style, "Single strokes, closed outlines or triangles")
        ->check(CLI::IsMember({"stroke", "outline", "mesh"}))
        ->capture_default_str();
    command->add_option("--font", options->font, "Family name; else the system's own choice");
    command->add_flag("--bold", options->bold, "The bold face");
    command->add_flag("--italic", options->italic, "The italic face");
    command
        ->add_option("--height", options->height,
                     "Font height: of the em square when below 0, of the line's cell above 0")
        ->check(CLI::Range(-30000, 30000))
        ->capture_default_str();
    command
        ->add_option("--size", options->size,
                     "Text size; 12 gives the device units of the ten times enlarged font")
        ->check(CLI::Range(1e-3, 1e6))
        ->capture_default_str();
    command->add_flag("--substitute", options->substitute,
                      "Take the nearest font, or the font's replacement character, for what is missing");
    command->callback([options, &session] {
        session.SetCommand([options, &session] { return RunText(*options, session); });
    });
}

}  // namespace zr
