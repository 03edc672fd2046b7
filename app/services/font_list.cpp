// SPDX-License-Identifier: MIT
#include "app/services/font_list.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <tuple>

#include "app/services/device_context.h"
#include "platform/windows.h"

namespace zr {
namespace {

template <std::size_t size>
std::u16string TextOf(const WCHAR (&buffer)[size]) {
    return std::u16string(buffer, std::find(buffer, buffer + size, WCHAR{0}));
}

// Families rotated for vertical writing are listed separately, with the prefix '@'.
bool IsTurned(const std::u16string& family) {
    return family.starts_with(u'@');
}

template <class Visit>
int CALLBACK Forward(const LOGFONTW* font, const TEXTMETRICW*, DWORD type, LPARAM visit) {
    // Vector and bitmap fonts have no outlines; fonts with cubic outlines have no type bit.
    constexpr DWORD kRasterOrDevice = 3;
    if ((type & kRasterOrDevice) == 0)
        (*reinterpret_cast<const Visit*>(visit))(*reinterpret_cast<const ENUMLOGFONTEXW*>(font));
    return 1;
}

template <class Visit>
void Enumerate(HDC dc, const WCHAR* family, const Visit& visit) {
    LOGFONTW record{};
    record.lfCharSet = DEFAULT_CHARSET;
    if (family) std::copy_n(family, std::size(record.lfFaceName), record.lfFaceName);
    EnumFontFamiliesExW(dc, &record, Forward<Visit>, reinterpret_cast<LPARAM>(&visit), 0);
}

}  // namespace

std::vector<FontFamily> ListFonts() {
    const DeviceContext dc;
    // The system may list a font once for each script that it supports.
    std::map<std::u16string, std::map<std::tuple<int, bool, std::u16string>, FontStyle>> found;
    Enumerate(dc, nullptr, [&](const ENUMLOGFONTEXW& family) {
        const std::u16string name = TextOf(family.elfLogFont.lfFaceName);
        if (IsTurned(name) || found.contains(name)) return;
        auto& styles = found[name];
        Enumerate(dc, family.elfLogFont.lfFaceName, [&](const ENUMLOGFONTEXW& font) {
            const FontStyle style{TextOf(font.elfStyle), static_cast<int>(font.elfLogFont.lfWeight),
                                  font.elfLogFont.lfItalic != 0};
            styles.try_emplace({style.weight, style.isItalic, style.name}, style);
        });
    });
    std::vector<FontFamily> families;
    for (const auto& [name, styles] : found) {
        FontFamily& family = families.emplace_back(FontFamily{name, {}});
        for (const auto& style : styles) family.styles.push_back(style.second);
    }
    return families;
}

}  // namespace zr
