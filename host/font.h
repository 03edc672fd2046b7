// SPDX-License-Identifier: MIT
#pragma once

// The description of a font that the operations of vl::zr::legacy::CadText take. On Windows it is the
// system's own record, which <windows.h> defines; elsewhere it is declared here, field for field the same.
#ifdef _WIN32

struct tagLOGFONTW;

#else

#include <cstdint>

constexpr int LF_FACESIZE = 32;

// Face, weight and slant select the closest system font, and lfHeight gives its size; the other fields have
// no effect. Zero means no preference.
struct tagLOGFONTW {
    std::int32_t lfHeight = 0;  // device units; < 0: of the em square, > 0: of the cell (ascent + descent)
    std::int32_t lfWidth = 0;
    std::int32_t lfEscapement = 0;
    std::int32_t lfOrientation = 0;
    std::int32_t lfWeight = 0;  // 1 to 1000, 400 regular, 700 bold
    std::uint8_t lfItalic = 0;  // 0 or 1
    std::uint8_t lfUnderline = 0;
    std::uint8_t lfStrikeOut = 0;
    std::uint8_t lfCharSet = 0;
    std::uint8_t lfOutPrecision = 0;
    std::uint8_t lfClipPrecision = 0;
    std::uint8_t lfQuality = 0;
    std::uint8_t lfPitchAndFamily = 0;
    char16_t lfFaceName[LF_FACESIZE] = {};  // the family's name, terminated
};

#endif

using LOGFONTW = tagLOGFONTW;
