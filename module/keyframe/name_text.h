// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <type_traits>

#include "host/serializer.h"

// Texts of exported names, narrow (bytes) and wide (UTF-16 units): a character here means one element of the
// text.
namespace zrt {

// Copies at most size - 1 characters and a terminator. Null, with nothing written, when a pointer is null
// or size is 0; else destination.
template <typename Char>
Char* CopyNameBounded(Char* destination, const Char* source, std::size_t size) {
    if (destination == nullptr || source == nullptr || size == 0) return nullptr;
    std::size_t i = 0;
    for (; i + 1 < size && source[i] != 0; ++i) destination[i] = source[i];
    destination[i] = 0;
    return destination;
}

// Replaces, in place, every character outside a-z, A-Z, 0-9, '-' and '_' by '_', and a digit in front as
// well unless nameFlags (vl::tk::NameFlag) allow it: "3D box" -> "_D_box".
template <typename Char>
void SanitizeName(Char* name, std::uint32_t nameFlags) {
    if ((nameFlags & vl::tk::kNamesKeepCharacters) != 0) return;
    bool digitStays = (nameFlags & vl::tk::kNamesLeadingDigit) != 0;
    for (; *name != 0; ++name) {
        const Char c = *name;
        const bool stays = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-' || c == '_' ||
                           (c >= '0' && c <= '9' && digitStays);
        if (!stays) *name = '_';
        digitStays = true;
    }
}

// Decimal digits, as either kind of text.
template <typename Char>
std::basic_string<Char> Decimal(std::uint64_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

// A name as UTF-16 units, one for each character of either kind.
inline std::u16string ToUnits(const char* name) {
    std::u16string units;
    for (; *name != 0; ++name) units.push_back(static_cast<unsigned char>(*name));
    return units;
}
inline std::u16string ToUnits(const char16_t* name) {
    return name;
}

// Lets the tool's callback, if it has one, change the name of a node or material. size: of the buffer, with
// room for the terminator.
template <typename Char>
void Rename(const vl::tk::Serializer& tool, vl::Interface* object, Char* name, std::size_t size) {
    if (tool.m_pfnRename == nullptr) return;
    vl::String text;
    if constexpr (std::is_same_v<Char, char>) {
        text.Set(name);
    } else {
        text.Set(name, -1);
    }
    tool.m_pfnRename(object, &text, tool.m_pRenameContext);
    text.Get(name, static_cast<int>(size));
}

}  // namespace zrt
