// SPDX-License-Identifier: MIT
#include "app/operations/text/text_source.h"

#include <cstdio>

#include "base/error.h"
#include "base/text.h"

namespace zr {
namespace {

void Append(std::u16string& text, char32_t code) {
    if (code < 0x10000) {
        text += static_cast<char16_t>(code);
    } else {
        text += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        text += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
}

}  // namespace

std::u16string DecodeText(std::string_view utf8, std::string_view name) {
    std::u16string text;
    for (std::size_t at = 0; at < utf8.size();) {
        const auto [code, size] = FirstCharacterOf(utf8.substr(at));
        if (size == 0) throw Error(name, Join("byte ", at), "the text is not UTF-8");
        if (code == 0) throw Error(name, Join("byte ", at), "the text contains a zero character");
        Append(text, code);
        at += size;
    }
    return text;
}

std::u16string DecodeTextFile(Bytes content, std::string_view name) {
    std::u16string text = DecodeText({reinterpret_cast<const char*>(content.data()), content.size()}, name);
    if (text.starts_with(u'\uFEFF')) text.erase(0, 1);
    std::u16string lines;
    for (const char16_t c : text) {
        if (c == u'\n' && !lines.ends_with(u'\r')) lines += u'\r';
        lines += c;
    }
    return lines;
}

TextCharacter CharacterAt(std::u16string_view text, std::size_t position) {
    const char32_t first = text[position];
    const char32_t second = position + 1 < text.size() ? text[position + 1] : 0;
    const bool isPair = first >= 0xD800 && first < 0xDC00 && second >= 0xDC00 && second < 0xE000;
    if (!isPair) return {first, 1};
    return {0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00), 2};
}

std::string CharacterName(char32_t code) {
    char name[16];
    std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(code));
    return name;
}

}  // namespace zr
