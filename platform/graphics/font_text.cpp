// SPDX-License-Identifier: MIT
#include "platform/graphics/font_text.h"

#include <cstring>

namespace platform {

std::string ToUtf8(const char16_t* text) {
    std::string result;
    const auto* bytes = reinterpret_cast<const FcChar8*>(text);
    int left = static_cast<int>(2 * std::char_traits<char16_t>::length(text));
    while (left > 0) {
        FcChar32 character = 0;
        const int used = FcUtf16ToUcs4(bytes, FcEndianLittle, &character, left);
        if (used <= 0) break;
        FcChar8 encoded[FC_UTF8_MAX_LEN];
        const int length = FcUcs4ToUtf8(character, encoded);
        result.append(reinterpret_cast<const char*>(encoded), static_cast<std::size_t>(length));
        bytes += used;
        left -= used;
    }
    return result;
}

std::u16string ToUtf16(const FcChar8* text) {
    std::u16string result;
    int left = static_cast<int>(std::strlen(reinterpret_cast<const char*>(text)));
    while (left > 0) {
        FcChar32 character = 0;
        const int used = FcUtf8ToUcs4(text, &character, left);
        if (used <= 0) break;
        if (character < 0x10000) {
            result += static_cast<char16_t>(character);
        } else {
            result += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10));
            result += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FF));
        }
        text += used;
        left -= used;
    }
    return result;
}

}  // namespace platform
