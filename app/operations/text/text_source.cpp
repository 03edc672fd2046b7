// SPDX-License-Identifier: MIT
#include "app/operations/text/text_source.h"

#include <cstdio>

#include "base/error.h"
#include "base/file.h"
#include "base/text.h"

namespace zr {
namespace {

// Length of the well-formed character at the start of `utf8`, 0 when there is none; its code.
std::size_t DecodeFirst(std::string_view utf8, char32_t& code) {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(utf8[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) {
        code = lead;
        return 1;
    }
    const std::size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || utf8.size() < length) return 0;
    code = lead & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80) return 0;
        code = code << 6 | (byte(i) & 0x3F);
    }
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    return code >= kSmallest[length] && code <= 0x10FFFF && !isSurrogate ? length : 0;
}

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
        char32_t code = 0;
        const std::size_t length = DecodeFirst(utf8.substr(at), code);
        if (length == 0) throw Error(name, Join("byte ", at), "the text is not UTF-8");
        if (code == 0) throw Error(name, Join("byte ", at), "the text has a zero character in it");
        Append(text, code);
        at += length;
    }
    return text;
}

std::u16string ReadTextFile(const std::filesystem::path& file) {
    const FileContent content = ReadFile(file);
    const Bytes bytes = content.View();
    std::u16string text =
        DecodeText({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, PathToUtf8(file));
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
