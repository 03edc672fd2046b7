// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/file.h"

namespace zr {

// UTF-8 as UTF-16. Throws Error with `name` and the place, "byte N" counted from 0, of what is not UTF-8 or
// is a zero character.
std::u16string DecodeText(std::string_view utf8, std::string_view name);

// The text of a file of that name and content, without its byte order mark. Every line ends as the module
// breaks lines: with a carriage return and a line feed. Throws Error.
std::u16string DecodeTextFile(Bytes content, std::string_view name);

// One character of a text, which may be two UTF-16 units.
struct TextCharacter {
    char32_t code;
    std::size_t units;
};
TextCharacter CharacterAt(std::u16string_view text, std::size_t position);

// "U+00E9".
std::string CharacterName(char32_t code);

}  // namespace zr
