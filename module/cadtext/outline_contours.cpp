// SPDX-License-Identifier: MIT
#include <numbers>

#include "module/cadtext/cad_text.h"
#include "module/cadtext/glyph_outline.h"
#include "module/cadtext/letters_contours.h"

namespace {

constexpr int kPointsPerInch = 72;

// Counts the line feeds that text follows. A carriage return counts as text.
std::uint32_t CountLineBreaks(const char16_t* text) {
    std::uint32_t count = 0;
    std::uint32_t run = 0;
    for (; *text != 0; ++text) {
        if (*text == u'\n') {
            ++run;
        } else {
            count += run;
            run = 0;
        }
    }
    return count;
}

double LineHeight(LONG fontHeight) {
    if (fontHeight > 0) return fontHeight + 1.0;
    const HDC dc = GetDC(nullptr);
    const int points = MulDiv(fontHeight, kPointsPerInch, GetDeviceCaps(dc, LOGPIXELSY));
    ReleaseDC(nullptr, dc);
    return 1.0 - points;
}

void AddGlyph(LettersContours& contours, const GlyphOutline& glyph, std::uint32_t letter, double penX,
              double penY) {
    for (const std::vector<GlyphPoint>& contour : glyph.contours) {
        contours.AddContour(letter);
        const auto add = [&](GlyphPoint p) {
            contours.AddContourPoint({static_cast<float>(p.x + penX), static_cast<float>(p.y + penY), 0});
        };
        for (const GlyphPoint point : contour) add(point);
        if (!contour.empty()) add(contour.front());
    }
}

}  // namespace

vl::zr::legacy::GlyphContour* ZR_CADTEXT::CreateOutlineContours(const char16_t* text, LOGFONTW font,
                                                                double size, MessageSink*) try {
    auto contours = vl::Ref<LettersContours>::Adopt(new LettersContours);
    if (!contours) return nullptr;
    const std::uint32_t lineBreaks = CountLineBreaks(text);
    const double lineHeight = lineBreaks > 0 ? LineHeight(font.lfHeight) : 0.0;
    double penX = 0;
    double penY = lineBreaks * lineHeight;
    for (std::uint32_t i = 0; text[i] != 0; ++i) {
        if (text[i] == u'\r') {
            penX = 0;
        } else if (text[i] == u'\n') {
            penY -= lineHeight;
        } else {
            const GlyphOutline glyph(text[i], font, std::numbers::pi / 2, size);
            AddGlyph(*contours, glyph, i, penX, penY);
            penX += glyph.advance;
        }
    }
    return contours.Detach();
} catch (...) {
    return nullptr;
}
