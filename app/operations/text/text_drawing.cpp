// SPDX-License-Identifier: MIT
#include "app/operations/text/text_drawing.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <stdexcept>
#include <string_view>

#include "app/operations/text/text_solid.h"

namespace zr {
namespace {

constexpr double kStrokeLineDistance = 29;
constexpr double kFontLineDistance = 1.2;  // times the height of the font
constexpr int kEnlargement = 10;
constexpr int kOwnHeight = 16;         // of a font for which no height is set
constexpr double kFontPen = 1.0 / 87;  // times the cap height
constexpr double kStrokePen = 1.0 / 21;
constexpr double kUnscaledSize = 12;

// A character at the pen's origin.
struct Glyph {
    TextGeometry geometry;
    double advance = 0;
};

// The glyphs of a text, each made once, in the module's units at size 12.
class Glyphs {
public:
    Glyphs(Host& host, const TextRequest& request) : m_host(host), m_request(request) {
        m_request.size = kUnscaledSize;
        if (request.style != TextStyle::kStroke) m_font.emplace(request.font);
    }

    // Solids have depth 1.
    const Glyph& Get(char16_t c, bool isSolid) {
        const auto [at, isNew] = m_glyphs.try_emplace(c);
        Glyph& glyph = at->second;
        if (isNew) {
            glyph.geometry = Make({c}, m_request.style);
            glyph.advance = m_font ? m_font->Advance(c) : StrokeAdvance(c);
            if (isSolid) AddDepth(glyph.geometry, 1);
        }
        return glyph;
    }

    // The height of H or, if the font lacks it, of the replacement character.
    double CapHeight() {
        const TextStyle style = m_font ? TextStyle::kOutline : TextStyle::kStroke;
        return BoxOf(Make(u"H", style).points).high.y;
    }
    bool HasCapital() const { return !m_font || m_font->Has(u'H'); }

    double LineDistance() const {
        if (!m_font) return kStrokeLineDistance;
        const int height = std::abs(m_request.font.height) * kEnlargement;
        return kFontLineDistance * (height > 0 ? height : kOwnHeight);
    }

private:
    TextGeometry Make(std::u16string text, TextStyle style) {
        TextRequest request = m_request;
        request.text = std::move(text);
        request.style = style;
        return MakeText(m_host, request);
    }

    // The module returns the strokes but not the advance width: that shows in the position of a following
    // character.
    double StrokeAdvance(char16_t c) {
        const auto left = [&](std::u16string text) {
            const TextGeometry geometry = Make(std::move(text), TextStyle::kStroke);
            return geometry.PointsOf(geometry.contours.back())[0].x;
        };
        return left({c, u'|'}) - left(u"|");
    }

    Host& m_host;
    TextRequest m_request;
    std::optional<SystemFont> m_font;
    std::map<char16_t, Glyph> m_glyphs;
};

struct Line {
    std::size_t first;
    std::u16string_view text;
};

// A line ends with a line feed, a carriage return, or a carriage return and a line feed. A line break at the
// end of the text does not begin another line.
std::vector<Line> LinesOf(std::u16string_view text) {
    std::vector<Line> lines;
    for (std::size_t first = 0; first < text.size();) {
        const std::size_t end = std::min(text.find_first_of(u"\r\n", first), text.size());
        lines.push_back({first, text.substr(first, end - first)});
        first = end + (text.substr(end, 2) == u"\r\n" ? 2 : 1);
    }
    return lines;
}

class Drawer {
public:
    Drawer(Host& host, const TextRequest& request, const DrawingOptions& options)
        : m_glyphs(host, request), m_options(options) {
        const bool isStroke = request.style == TextStyle::kStroke;
        const double capHeight = m_glyphs.CapHeight();
        if (options.capHeight > 0 && !(capHeight > 0 && m_glyphs.HasCapital()))
            throw std::runtime_error("the font has no capital H, which sets the height of capitals");
        const double sized = isStroke ? 1 : request.size / kUnscaledSize;
        m_scale = options.capHeight > 0 ? options.capHeight / capHeight : sized;
        m_drawing.metrics.capHeight = capHeight * m_scale;
        m_drawing.metrics.lineDistance = m_glyphs.LineDistance() * options.lineSpacing * m_scale;
        TextGeometry& geometry = m_drawing.geometry;
        geometry.isMesh = request.style == TextStyle::kMesh;
        geometry.isClosed = request.style == TextStyle::kOutline;
        geometry.isSolid = options.depth > 0;
        geometry.unit = options.unit;
        geometry.penWidth = m_drawing.metrics.capHeight * (isStroke ? kStrokePen : kFontPen);
    }

    TextDrawing Run(std::u16string_view text) {
        const std::vector<Line> lines = LinesOf(text);
        double baseline = m_drawing.metrics.lineDistance * static_cast<double>(lines.size());
        for (const Line& line : lines) AddLine(line, baseline -= m_drawing.metrics.lineDistance);
        return std::move(m_drawing);
    }

private:
    const Glyph& GlyphOf(char16_t c) { return m_glyphs.Get(c, m_options.depth > 0); }

    void AddLine(const Line& line, double baseline) {
        TextMetrics::Line& metrics = m_drawing.metrics.lines.emplace_back();
        for (const char16_t c : line.text) metrics.advance += GlyphOf(c).advance * m_scale;
        if (m_options.align == TextAlign::kCenter) metrics.x = -metrics.advance / 2;
        if (m_options.align == TextAlign::kRight) metrics.x = -metrics.advance;
        metrics.baseline = baseline;
        double pen = 0;  // in units of the glyphs
        for (std::size_t i = 0; i < line.text.size(); ++i) {
            const Glyph& glyph = GlyphOf(line.text[i]);
            const double x = metrics.x + pen * m_scale;
            metrics.characters.push_back({line.first + i, line.text[i], x, glyph.advance * m_scale});
            Place(glyph.geometry, x, baseline, static_cast<int>(line.first + i));
            pen += glyph.advance;
        }
    }

    void Place(const TextGeometry& glyph, double x, double y, int letter) {
        TextGeometry& geometry = m_drawing.geometry;
        const auto first = static_cast<std::uint32_t>(geometry.points.size());
        for (const TextGeometry::Point& p : glyph.points) {
            geometry.points.push_back({static_cast<float>(p.x * m_scale + x),
                                       static_cast<float>(p.y * m_scale + y),
                                       p.z > 0 ? static_cast<float>(m_options.depth) : 0.0F});
        }
        for (const TextGeometry::Contour& contour : glyph.contours)
            geometry.contours.push_back({first + contour.first, contour.count, letter});
        const auto corner = [first](int i) { return static_cast<std::int32_t>(first) + i; };
        for (const LetterTriangle& t : glyph.triangles)
            geometry.triangles.push_back({corner(t.i0), corner(t.i1), corner(t.i2)});
    }

    Glyphs m_glyphs;
    const DrawingOptions& m_options;
    double m_scale;
    TextDrawing m_drawing{};
};

}  // namespace

TextDrawing MakeDrawing(Host& host, const TextRequest& request, const DrawingOptions& options) {
    return Drawer(host, request, options).Run(request.text);
}

}  // namespace zr
