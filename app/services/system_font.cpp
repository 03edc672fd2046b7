// SPDX-License-Identifier: MIT
#include "app/services/system_font.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace zr {
namespace {

constexpr LONG kEnlargement = 10;

DWORD AskMetrics(HDC dc, char16_t c, GLYPHMETRICS& metrics) {
    const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    return GetGlyphOutlineA(dc, c, GGO_NATIVE, &metrics, 0, nullptr, &identity);
}

}  // namespace

LOGFONTW RecordOf(const TextFont& font) {
    LOGFONTW record{};
    record.lfHeight = font.height;
    record.lfWeight = font.weight;
    record.lfItalic = font.isItalic;
    std::transform(font.family.begin(), font.family.end(), record.lfFaceName,
                   [](char16_t c) { return static_cast<WCHAR>(c); });
    return record;
}

SystemFont::SystemFont(const TextFont& font) {
    LOGFONTW record = RecordOf(font);
    record.lfHeight *= kEnlargement;
    m_font = CreateFontIndirectW(&record);
    if (!m_font) throw std::runtime_error("the system has no outline font");
    m_previous = SelectObject(m_dc, m_font);
}

SystemFont::~SystemFont() {
    SelectObject(m_dc, m_previous);
    DeleteObject(m_font);
}

std::u16string SystemFont::Family() const {
    WCHAR name[256] = {};
    GetTextFaceW(m_dc, static_cast<int>(std::size(name)), name);
    return std::u16string(std::begin(name), std::find(std::begin(name), std::end(name), WCHAR{0}));
}

bool SystemFont::Has(char16_t c) const {
    const WCHAR text = static_cast<WCHAR>(c);
    WORD glyph = 0;
    return GetGlyphIndicesW(m_dc, &text, 1, &glyph, GGI_MARK_NONEXISTING_GLYPHS) == 1 && glyph != 0xFFFF;
}

std::optional<std::size_t> SystemFont::OutlineSize(char16_t c) const {
    GLYPHMETRICS metrics;
    const DWORD size = AskMetrics(m_dc, c, metrics);
    return size != GDI_ERROR ? std::optional<std::size_t>(size) : std::nullopt;
}

int SystemFont::Advance(char16_t c) const {
    GLYPHMETRICS metrics;
    return AskMetrics(m_dc, c, metrics) != GDI_ERROR ? metrics.gmCellIncX : 0;
}

}  // namespace zr
