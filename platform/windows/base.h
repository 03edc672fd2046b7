// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/window_types.h"

// Base types of the Windows calls that platform/ implements. Widths are those of Windows: LONG and DWORD
// have 32 bits on every system.

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using LONG = std::int32_t;
using SHORT = std::int16_t;
using WCHAR = char16_t;
using LPVOID = void*;
using LPCVOID = const void*;
using LPSTR = char*;
using LPCSTR = const char*;
using LPWSTR = char16_t*;
using LPCWSTR = const char16_t*;
using INT_PTR = std::intptr_t;
using UINT_PTR = std::uintptr_t;
using LONG_PTR = std::intptr_t;
using ULONG_PTR = std::uintptr_t;
using DWORD_PTR = std::uintptr_t;
using SIZE_T = std::size_t;
using WPARAM = UINT_PTR;
using LPARAM = LONG_PTR;
using LRESULT = LONG_PTR;

using HANDLE = void*;
using HMODULE = HINSTANCE;
using HGDIOBJ = void*;

struct POINT {
    LONG x;
    LONG y;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct SIZE {
    LONG cx;
    LONG cy;
};

#define CALLBACK
#define WINAPI

constexpr BOOL FALSE = 0;
constexpr BOOL TRUE = 1;

constexpr WORD LOWORD(DWORD_PTR value) {
    return static_cast<WORD>(value & 0xFFFF);
}
constexpr WORD HIWORD(DWORD_PTR value) {
    return static_cast<WORD>((value >> 16) & 0xFFFF);
}
constexpr LPARAM MAKELPARAM(WORD low, WORD high) {
    return static_cast<LPARAM>(static_cast<DWORD>(low) | (static_cast<DWORD>(high) << 16));
}
constexpr WPARAM MAKEWPARAM(WORD low, WORD high) {
    return static_cast<WPARAM>(static_cast<DWORD>(low) | (static_cast<DWORD>(high) << 16));
}
inline LPCSTR MAKEINTRESOURCEA(WORD id) {
    return reinterpret_cast<LPCSTR>(static_cast<ULONG_PTR>(id));
}
