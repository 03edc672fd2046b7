// SPDX-License-Identifier: MIT

#include "module/cadtext/cad_text.h"
#include "module/cadtext/letters_contours.h"
#include "module/cadtext/stroke_font.h"

namespace {

constexpr double kLineAdvance = 29.0;

// Draws a character at the pen position.
void AddStrokes(LettersContours& contours, const zrt::StrokeGlyph& glyph, std::uint32_t letter, double penX,
                double penY) {
    bool isPenDown = false;
    for (int i = 0; i < glyph.pairCount; ++i) {
        const zrt::StrokePair pair = glyph.pairs[i];
        if (pair == zrt::kPenUp) {
            isPenDown = false;
            continue;
        }
        if (!isPenDown) contours.AddContour(letter);
        isPenDown = true;
        contours.AddContourPoint({static_cast<float>(pair.x + penX), static_cast<float>(pair.y + penY), 0});
    }
}

}  // namespace

vl::zr::legacy::GlyphContour* ZR_CADTEXT::CreateStrokeContours(const char16_t* text, LOGFONTW, double,
                                                               MessageSink*) try {
    auto contours = vl::Ref<LettersContours>::Adopt(new LettersContours);
    if (!contours) return nullptr;
    double penX = 0;
    double penY = 0;
    for (std::uint32_t i = 0; text[i] != 0; ++i) {
        const char16_t c = text[i];
        if (c == u'\n') {
            penX = 0;
            penY += kLineAdvance;
        } else if (c >= zrt::kFirstStrokeCode && c <= zrt::kLastStrokeCode) {
            const zrt::StrokeGlyph& glyph = zrt::kStrokeFont[c - zrt::kFirstStrokeCode];
            AddStrokes(*contours, glyph, i, penX, penY);
            penX += glyph.advance;
        }
    }
    return contours.Detach();
} catch (...) {
    return nullptr;
}
