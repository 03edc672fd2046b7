// SPDX-License-Identifier: MIT
#include "platform/windows/gdi.h"

#include <ft2build.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>
#include FT_BBOX_H
#include FT_OUTLINE_H

#include "platform/graphics/font_face.h"
#include "platform/graphics/native_outline.h"

using platform::FontFace;

// A face at a size, with the glyph loaded last: callers ask for the size of an outline before its bytes.
struct HFONT__ {
    FontFace* face = nullptr;
    int ppem = 0;

    bool hasGlyph = false;
    char16_t character = 0;
    std::vector<BYTE> outline;
    GLYPHMETRICS metrics{};
};

struct HDC__ {
    HFONT selected;
};

namespace {

// What a fresh device context has selected; it draws nothing.
HFONT StockFont() {
    static HFONT__ font;
    return &font;
}

// 12 points at 96 dots per inch, for a record without a height.
constexpr std::int64_t kDefaultPpem = 16;

int PixelsPerEm(const FontFace& face, LONG height) {
    std::int64_t ppem = kDefaultPpem;
    if (height < 0) ppem = -std::int64_t{height};
    if (height > 0) {
        ppem = (std::int64_t{height} * face.UnitsPerEm() + face.CellHeight() / 2) / face.CellHeight();
    }
    return static_cast<int>(std::clamp<std::int64_t>(ppem, 1, 0x7FFFFFFF));
}

bool IsIdentity(const MAT2& m) {
    return m.eM11.value == 1 && m.eM11.fract == 0 && m.eM12.value == 0 && m.eM12.fract == 0 &&
           m.eM21.value == 0 && m.eM21.fract == 0 && m.eM22.value == 1 && m.eM22.fract == 0;
}

// Metrics are whole device units: the advance rounded, the box widened to the units it touches.
bool ToMetrics(const FT_Outline& outline, int advance, double scale, GLYPHMETRICS& metrics) {
    FT_BBox box{0, 0, 0, 0};
    if (outline.n_points > 0) FT_Outline_Get_BBox(const_cast<FT_Outline*>(&outline), &box);
    const double increment = std::floor(advance * scale + 0.5);
    if (std::abs(increment) > 0x7FFF) return false;
    const auto left = static_cast<LONG>(std::floor(static_cast<double>(box.xMin) * scale));
    const auto right = static_cast<LONG>(std::ceil(static_cast<double>(box.xMax) * scale));
    const auto bottom = static_cast<LONG>(std::floor(static_cast<double>(box.yMin) * scale));
    const auto top = static_cast<LONG>(std::ceil(static_cast<double>(box.yMax) * scale));
    metrics.gmBlackBoxX = static_cast<UINT>(right - left);
    metrics.gmBlackBoxY = static_cast<UINT>(top - bottom);
    metrics.gmptGlyphOrigin = {left, top};
    metrics.gmCellIncX = static_cast<SHORT>(increment);
    metrics.gmCellIncY = 0;
    return true;
}

bool LoadGlyph(HFONT font, char16_t character) {
    if (font->hasGlyph && font->character == character) return true;
    font->hasGlyph = false;
    font->outline.clear();
    bool fits = false;
    const bool loaded = font->face->VisitGlyph(
        font->face->GlyphIndex(character), [&](const FT_Outline& outline, int advance) {
            const int unitsPerEm = font->face->UnitsPerEm();
            fits = platform::AppendNativeOutline(outline, font->ppem, unitsPerEm, font->outline) &&
                   ToMetrics(outline, advance, static_cast<double>(font->ppem) / unitsPerEm, font->metrics);
        });
    font->character = character;
    return font->hasGlyph = loaded && fits;
}

}  // namespace

HFONT CreateFontIndirectW(const LOGFONTW* font) {
    FontFace* face = font ? FontFace::Find(*font) : nullptr;
    if (!face) return nullptr;
    return new HFONT__{face, PixelsPerEm(*face, font->lfHeight)};
}

BOOL DeleteObject(HGDIOBJ object) {
    if (!object) return FALSE;
    if (object != StockFont()) delete static_cast<HFONT>(object);
    return TRUE;
}

HDC GetDC(HWND window) {
    return window ? nullptr : new HDC__{StockFont()};
}

int ReleaseDC(HWND, HDC dc) {
    delete dc;
    return dc ? 1 : 0;
}

int GetDeviceCaps(HDC dc, int index) {
    return dc && index == LOGPIXELSY ? 96 : 0;
}

HGDIOBJ SelectObject(HDC dc, HGDIOBJ object) {
    if (!dc || !object) return nullptr;
    const HFONT previous = dc->selected;
    dc->selected = static_cast<HFONT>(object);
    return previous;
}

int GetTextFaceW(HDC dc, int count, LPWSTR name) {
    if (!dc || !dc->selected->face || count <= 0 || !name) return 0;
    const std::u16string& family = dc->selected->face->Family();
    const auto length = std::min(family.size(), static_cast<std::size_t>(count) - 1);
    family.copy(name, length);
    name[length] = 0;
    return static_cast<int>(length) + 1;
}

DWORD GetGlyphIndicesW(HDC dc, LPCWSTR text, int count, WORD* glyphs, DWORD flags) {
    if (!dc || !dc->selected->face || flags != GGI_MARK_NONEXISTING_GLYPHS || count < 0) return GDI_ERROR;
    for (int i = 0; i < count; ++i) {
        const unsigned glyph = dc->selected->face->GlyphIndex(text[i]);
        glyphs[i] = glyph == 0 ? WORD{0xFFFF} : static_cast<WORD>(glyph);
    }
    return static_cast<DWORD>(count);
}

DWORD GetGlyphOutlineA(HDC dc, UINT character, UINT format, GLYPHMETRICS* metrics, DWORD byteCount,
                       LPVOID buffer, const MAT2* matrix) {
    if (!dc || !dc->selected->face || format != GGO_NATIVE || !metrics || !matrix || !IsIdentity(*matrix) ||
        character > 0xFFFF) {
        return GDI_ERROR;
    }
    const HFONT font = dc->selected;
    if (!LoadGlyph(font, static_cast<char16_t>(character))) return GDI_ERROR;
    const auto size = static_cast<DWORD>(font->outline.size());
    if (buffer) {
        if (byteCount < size) return GDI_ERROR;
        std::memcpy(buffer, font->outline.data(), size);
    }
    *metrics = font->metrics;
    return size;
}

int MulDiv(int a, int b, int c) {
    if (c == 0) return -1;
    const std::int64_t product = std::int64_t{a} * b;
    const std::int64_t divisor = std::abs(std::int64_t{c});
    const std::int64_t magnitude = (std::abs(product) + divisor / 2) / divisor;
    const std::int64_t result = (product < 0) != (c < 0) ? -magnitude : magnitude;
    return result < -2147483647 - 1 || result > 2147483647 ? -1 : static_cast<int>(result);
}
