// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include "base/file.h"

namespace zr {

// Converts UTF-8 to UTF-16. Throws Error with `name` and the place, "byte N" counted from 0, for invalid
// UTF-8 and for a zero character.
std::u16string DecodeText(std::string_view utf8, std::string_view name);

// The text of a file, without its byte order mark. Every line ends with a carriage return and a line feed, at
// which the module breaks lines. name: for messages. Throws Error.
std::u16string DecodeTextFile(Bytes content, std::string_view name);

// A character of a text, with its number of UTF-16 units (1 or 2).
struct TextCharacter {
    char32_t code;
    std::size_t units;
};
// The character at a position below the size of the text; an unpaired surrogate counts as one.
TextCharacter CharacterAt(std::u16string_view text, std::size_t position);

// "U+00E9".
std::string CharacterName(char32_t code);

}  // namespace zr
