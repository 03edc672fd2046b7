// SPDX-License-Identifier: MIT
#include "kernix/utf.h"

#include <algorithm>
#include <cstdint>

namespace kernix {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

// Decodes the character at the front of a non-empty text; length receives the number of bytes it takes.
char32_t DecodeUtf8(std::string_view text, std::size_t& length) {
    const auto byte = [&](std::size_t i) { return static_cast<std::uint8_t>(text[i]); };
    length = 1;
    const std::uint8_t first = byte(0);
    if (first < 0x80) return first;
    std::size_t extra = 0;
    char32_t value = 0;
    char32_t least = 0;
    if (first >= 0xC2 && first < 0xE0) {
        extra = 1, value = first & 0x1F, least = 0x80;
    } else if (first >= 0xE0 && first < 0xF0) {
        extra = 2, value = first & 0x0F, least = 0x800;
    } else if (first >= 0xF0 && first < 0xF5) {
        extra = 3, value = first & 0x07, least = 0x10000;
    } else {
        return kReplacement;
    }
    for (std::size_t i = 1; i <= extra; ++i) {
        if (i >= text.size() || (byte(i) & 0xC0) != 0x80) return kReplacement;
        value = (value << 6) | (byte(i) & 0x3F);
    }
    if (value < least || value > 0x10FFFF || (value >= 0xD800 && value < 0xE000)) return kReplacement;
    length = extra + 1;
    return value;
}

void AppendUtf8(char32_t value, std::string& out) {
    const auto put = [&](char32_t byte) { out.push_back(static_cast<char>(byte)); };
    if (value < 0x80) {
        put(value);
    } else if (value < 0x800) {
        put(0xC0 | (value >> 6));
        put(0x80 | (value & 0x3F));
    } else if (value < 0x10000) {
        put(0xE0 | (value >> 12));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    } else {
        put(0xF0 | (value >> 18));
        put(0x80 | ((value >> 12) & 0x3F));
        put(0x80 | ((value >> 6) & 0x3F));
        put(0x80 | (value & 0x3F));
    }
}

}  // namespace

std::u16string ToUtf16(std::string_view text) {
    std::u16string out;
    out.reserve(text.size());
    while (!text.empty()) {
        std::size_t length = 0;
        const char32_t value = DecodeUtf8(text, length);
        text.remove_prefix(length);
        if (value < 0x10000) {
            out.push_back(static_cast<char16_t>(value));
        } else {
            out.push_back(static_cast<char16_t>(0xD800 + ((value - 0x10000) >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + ((value - 0x10000) & 0x3FF)));
        }
    }
    return out;
}

std::string ToUtf8(std::u16string_view text) {
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t value = text[i];
        if (value >= 0xD800 && value < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 &&
            text[i + 1] < 0xE000) {
            value = 0x10000 + ((value - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (value >= 0xD800 && value < 0xE000) {
            value = kReplacement;
        }
        AppendUtf8(value, out);
    }
    return out;
}

std::size_t CutUtf8(std::string_view text, std::size_t size) {
    if (size >= text.size()) return text.size();
    while (size > 0 && (static_cast<std::uint8_t>(text[size]) & 0xC0) == 0x80) --size;
    return size;
}

void CopyText(std::string_view text, char* buffer, int size) {
    if (buffer == nullptr || size < 1) return;
    const std::size_t length = CutUtf8(text, static_cast<std::size_t>(size) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = 0;
}

void CopyText(std::u16string_view text, char16_t* buffer, int size) {
    if (buffer == nullptr || size < 1) return;
    const std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(text.data(), length, buffer);
    buffer[length] = 0;
}

}  // namespace kernix
