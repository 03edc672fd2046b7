// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "app/services/system_font.h"

namespace zr {

// Something that the module draws differently from what the text or the font's name says.
struct TextShortcoming {
    std::string what;     // "the font "X" has no character U+4E00"
    std::string instead;  // what is drawn instead
};

// Each character once, in the text's order. With strokes.
std::vector<TextShortcoming> CheckStrokeText(std::u16string_view text);

// The same with a font, which may differ from the one asked for. Throws std::runtime_error for a character
// that cannot be drawn at all.
std::vector<TextShortcoming> CheckFontText(std::u16string_view text, const TextFont& font);

// Whether the text has characters that are read from right to left, or joined to their neighbours as Arabic
// ones are. They are drawn one by one from left to right.
bool NeedsShaping(std::u16string_view text);

}  // namespace zr
