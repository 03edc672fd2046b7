// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "app/operations/text/make_text.h"

namespace zr {

// Something that the module cannot draw as the text or the name of the font asks.
struct TextShortcoming {
    std::string what;     // "the font "X" has no character U+4E00"
    std::string instead;  // what happens instead: "leaving it out"
};

// For a text drawn with strokes: a shortcoming for each distinct character, in the order of the text.
std::vector<TextShortcoming> CheckStrokeText(std::u16string_view text);

// The same for a text drawn with a font, which may be another one than that requested. Throws
// std::runtime_error for a character that cannot be drawn at all.
std::vector<TextShortcoming> CheckFontText(std::u16string_view text, const TextFont& font);

// About the bytes of memory that the text takes as geometry.
std::uint64_t MemoryOf(const TextRequest& request, bool isSolid);

// Whether the text has characters that are read from right to left or joined to their neighbours, as in
// Arabic. They are drawn one by one from left to right nevertheless.
bool NeedsShaping(std::u16string_view text);

}  // namespace zr
