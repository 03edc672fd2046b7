// SPDX-License-Identifier: MIT
#include "module/cadtext/glyph_outline.h"

#include <memory>
#include <new>
#include <type_traits>

namespace {

struct FontDeleter {
    void operator()(HFONT font) const { DeleteObject(font); }
};
using FontHandle = std::unique_ptr<std::remove_pointer_t<HFONT>, FontDeleter>;

// The screen's device context, with a font selected until the end of the scope.
class ScreenFontContext {
public:
    explicit ScreenFontContext(HFONT font) : m_dc(GetDC(nullptr)), m_previous(SelectObject(m_dc, font)) {}
    ~ScreenFontContext() {
        SelectObject(m_dc, m_previous);
        ReleaseDC(nullptr, m_dc);
    }
    ScreenFontContext(const ScreenFontContext&) = delete;
    ScreenFontContext& operator=(const ScreenFontContext&) = delete;

    HDC Dc() const { return m_dc; }

private:
    HDC m_dc;
    HGDIOBJ m_previous;
};

constexpr LONG kEnlargement = 10;

}  // namespace

GlyphOutline::GlyphOutline(std::uint32_t characterCode, const LOGFONTW& font, double toleranceAngle,
                           double size)
    : GlyphOutline(toleranceAngle, size) {
    LOGFONTW enlarged = font;
    enlarged.lfHeight = static_cast<LONG>(static_cast<DWORD>(font.lfHeight) * kEnlargement);
    enlarged.lfCharSet = ANSI_CHARSET;
    const FontHandle handle(CreateFontIndirectW(&enlarged));
    if (!handle) return;
    const ScreenFontContext context(handle.get());
    LoadNativeOutline(context.Dc(), characterCode);
}

bool GlyphOutline::LoadNativeOutline(HDC dc, std::uint32_t characterCode) {
    const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GLYPHMETRICS metrics{};
    const DWORD size = GetGlyphOutlineA(dc, characterCode, GGO_NATIVE, &metrics, 0, nullptr, &identity);
    if (size == GDI_ERROR) return false;
    if (size != 0) {
        const std::unique_ptr<BYTE[]> buffer(new (std::nothrow) BYTE[size]);
        if (!buffer ||
            GetGlyphOutlineA(dc, characterCode, GGO_NATIVE, &metrics, size, buffer.get(), &identity) !=
                size ||
            !ParseNativeOutline(buffer.get(), size)) {
            return false;
        }
    }
    advance = metrics.gmCellIncX * scale;
    return true;
}
