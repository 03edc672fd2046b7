// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr {

struct FontStyle {
    std::u16string name;  // "Bold Oblique"
    int weight;           // 400 regular, 700 bold
    bool isItalic;
};

struct FontFamily {
    std::u16string name;
    std::vector<FontStyle> styles;
};

// The families of outline fonts that a text can be drawn with, by name.
std::vector<FontFamily> ListFonts();

}  // namespace zr
