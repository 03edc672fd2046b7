// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace vl {

// ASCII letters fold to lower case, everything else stays. Locale-free, for narrow and wide characters.
template <typename Char>
constexpr Char FoldCase(Char c) {
    return c >= Char('A') && c <= Char('Z') ? static_cast<Char>(c + ('a' - 'A')) : c;
}

// Compares zero-terminated texts by their folded characters as unsigned values: negative, 0 or positive.
// Since letters fold to lower case, "a_b" sorts before "aAb".
template <typename Char, typename Unsigned>
constexpr int CompareFolded(const Char* a, const Char* b) {
    for (;; ++a, ++b) {
        const auto ca = static_cast<Unsigned>(FoldCase(*a));
        const auto cb = static_cast<Unsigned>(FoldCase(*b));
        if (ca != cb) return ca < cb ? -1 : 1;
        if (ca == 0) return 0;
    }
}

constexpr int CompareNoCase(const char* a, const char* b) {
    return CompareFolded<char, unsigned char>(a, b);
}
constexpr int CompareNoCase(const char16_t* a, const char16_t* b) {
    return CompareFolded<char16_t, char16_t>(a, b);
}

// False when either is null.
constexpr bool EqualNoCase(const char* a, const char* b) {
    return a != nullptr && b != nullptr && CompareNoCase(a, b) == 0;
}

constexpr std::size_t Length(const char16_t* text) {
    std::size_t length = 0;
    while (text[length] != 0) ++length;
    return length;
}

}  // namespace vl
