// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>

namespace zr {
namespace {

constexpr char kHex[] = "0123456789ABCDEF";

// Characters that move the cursor, end the line or change the display order of others.
bool Steers(std::uint32_t code) {
    const auto within = [code](std::uint32_t first, std::uint32_t last) {
        return code >= first && code <= last;
    };
    return code < 0x20 || within(0x7F, 0x9F) || code == 0x061C || within(0x200E, 0x200F) ||
           within(0x2028, 0x202E) || within(0x2066, 0x2069) || code == 0xFEFF;
}

void AppendEscape(std::string& out, char mark, std::uint32_t code, int digits) {
    out += '\\';
    out += mark;
    while (digits-- > 0) out += kHex[code >> (4 * digits) & 15];
}

}  // namespace

FirstCharacter FirstCharacterOf(std::string_view text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) return {lead, 1};
    const std::size_t size = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || size > text.size()) return {};
    char32_t code = lead & (0x7FU >> size);
    for (std::size_t i = 1; i < size; ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if ((byte & 0xC0) != 0x80) return {};
        code = code << 6 | (byte & 0x3FU);
    }
    constexpr char32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    if (code < kLeast[size] || code > 0x10FFFF || isSurrogate) return {};
    return {code, size};
}

std::string Counted(std::size_t count, std::string_view noun) {
    const bool takesEs = noun.ends_with("h") || noun.ends_with("x") || noun.ends_with("s");
    return Join(count, " ", noun, count == 1 ? "" : takesEs ? "es" : "s");
}

std::string Counted(std::size_t count, std::string_view one, std::string_view many) {
    return Join(count, " ", count == 1 ? one : many);
}

std::string Short(double number, int digits) {
    std::array<char, 40> text;
    return {text.data(),
            std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::general, digits)
                .ptr};
}

bool HasEnding(std::string_view name, std::string_view ending) {
    const auto folded = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return name.size() >= ending.size() &&
           std::equal(ending.begin(), ending.end(), name.end() - static_cast<std::ptrdiff_t>(ending.size()),
                      [&](char a, char b) { return folded(a) == folded(b); });
}

std::string Printable(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    while (!text.empty()) {
        const FirstCharacter c = FirstCharacterOf(text);
        if (c.size == 0)
            AppendEscape(out, 'x', static_cast<unsigned char>(text[0]), 2);
        else if (!Steers(c.code))
            out += text.substr(0, c.size);
        else if (c.code == '\n')
            out += "\\n";
        else if (c.code == '\t')
            out += "\\t";
        else if (c.code < 0x80)
            AppendEscape(out, 'x', c.code, 2);
        else
            AppendEscape(out, 'u', c.code, 4);
        text.remove_prefix(c.size == 0 ? 1 : c.size);
    }
    return out;
}

}  // namespace zr
