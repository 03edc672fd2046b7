// SPDX-License-Identifier: MIT
#pragma once

#include "host/font.h"
#include "platform/windows/base.h"

// Fonts and native glyph outlines. Handles are owned by whoever obtained them: a font is freed by
// DeleteObject, a device context by ReleaseDC. A handle is used by one thread at a time; different handles
// may be used by different threads at once.

struct HDC__;
using HDC = HDC__*;
struct HFONT__;
using HFONT = HFONT__*;

// A font as an enumeration reports it.
struct tagENUMLOGFONTEXW {
    LOGFONTW elfLogFont;
    WCHAR elfFullName[64];
    WCHAR elfStyle[LF_FACESIZE];
    WCHAR elfScript[LF_FACESIZE];
};
using ENUMLOGFONTEXW = tagENUMLOGFONTEXW;
struct tagTEXTMETRICW;
using TEXTMETRICW = tagTEXTMETRICW;
using FONTENUMPROCW = int(CALLBACK*)(const LOGFONTW*, const TEXTMETRICW*, DWORD, LPARAM);

constexpr BYTE ANSI_CHARSET = 0;
constexpr BYTE DEFAULT_CHARSET = 1;
constexpr DWORD TRUETYPE_FONTTYPE = 4;
constexpr DWORD FR_PRIVATE = 0x10;
constexpr LONG FW_NORMAL = 400;
constexpr LONG FW_BOLD = 700;

// value + fract / 65536, the fraction first in memory.
struct FIXED {
    WORD fract;
    SHORT value;
};

struct MAT2 {
    FIXED eM11;
    FIXED eM12;
    FIXED eM21;
    FIXED eM22;
};

struct POINTFX {
    FIXED x;
    FIXED y;
};

// A closed polygon: this header and the curve records that fill it up to cb bytes.
struct TTPOLYGONHEADER {
    DWORD cb;
    DWORD dwType;
    POINTFX pfxStart;
};

// cpfx points follow the two words, of which the record declares the first.
struct TTPOLYCURVE {
    WORD wType;
    WORD cpfx;
    POINTFX apfx[1];
};

struct GLYPHMETRICS {
    UINT gmBlackBoxX;
    UINT gmBlackBoxY;
    POINT gmptGlyphOrigin;
    SHORT gmCellIncX;
    SHORT gmCellIncY;
};

constexpr DWORD TT_POLYGON_TYPE = 24;
constexpr WORD TT_PRIM_LINE = 1;
constexpr WORD TT_PRIM_QSPLINE = 2;
constexpr WORD TT_PRIM_CSPLINE = 3;

constexpr DWORD GDI_ERROR = 0xFFFFFFFF;
constexpr UINT GGO_NATIVE = 2;
constexpr int LOGPIXELSY = 90;
constexpr DWORD GGI_MARK_NONEXISTING_GLYPHS = 1;

// The font closest to the record by face name, weight and slant (lfHeight gives its size; the other fields
// have no effect). Weight and slant that the face lacks are synthesised from its outlines. Null when the
// system has no outline font at all.
HFONT CreateFontIndirectW(const LOGFONTW* font);

// Adds the fonts of a file for this process alone and returns how many there are; 0 when there are none or
// `flags` is not FR_PRIVATE. They take precedence over the system's fonts of the same family. `reserved` is
// not used.
int AddFontResourceExW(LPCWSTR file, DWORD flags, LPVOID reserved);

// Calls `visit` for the outline fonts, sorted by family: for one of each family, or for all of the family
// that the record names. Its arguments are an ENUMLOGFONTEXW with family, style, weight and slant, null
// metrics, TRUETYPE_FONTTYPE and `user`. Stops when `visit` returns 0; the result is its last return value,
// or 1 if it was never called. Families whose names do not fit a LOGFONTW are left out. `flags` must be 0.
int EnumFontFamiliesExW(HDC dc, LOGFONTW* record, FONTENUMPROCW visit, LPARAM user, DWORD flags);

// False for null.
BOOL DeleteObject(HGDIOBJ object);

// The screen; `window` must be null.
HDC GetDC(HWND window);
int ReleaseDC(HWND window, HDC dc);

// LOGPIXELSY: 96. Every other index: 0.
int GetDeviceCaps(HDC dc, int index);

// Selects a font and returns the object selected before; null, and nothing selected, for a null object.
HGDIOBJ SelectObject(HDC dc, HGDIOBJ object);

// Family name of the selected font as the system has it, cut to `count` characters with the terminator.
// Returns the characters written, terminator included; 0 on failure.
int GetTextFaceW(HDC dc, int count, LPWSTR name);

// Glyph numbers of `count` characters of `text`; characters the font lacks get 0xFFFF. `flags` must be
// GGI_MARK_NONEXISTING_GLYPHS. Returns `count`, or GDI_ERROR.
DWORD GetGlyphIndicesW(HDC dc, LPCWSTR text, int count, WORD* glyphs, DWORD flags);

// Outline of a character in native form and its metrics, unhinted at the size of the selected font. The
// character is a UTF-16 code unit; one the font lacks yields the font's replacement glyph. Only GGO_NATIVE
// with the identity is supported. Without a buffer the result is the byte count; with one of at least that
// size it is filled. 0: a glyph without outline. GDI_ERROR: no outline available, coordinates that a FIXED
// cannot hold, or a buffer too small. The metrics are filled unless the result is GDI_ERROR.
DWORD GetGlyphOutlineA(HDC dc, UINT character, UINT format, GLYPHMETRICS* metrics, DWORD byteCount,
                       LPVOID buffer, const MAT2* matrix);

// a * b / c, rounded to nearest and half away from zero; -1 when c is 0 or the result does not fit.
int MulDiv(int a, int b, int c);
