// SPDX-License-Identifier: MIT
#pragma once

// Wide text is char16_t throughout. A Windows call takes wchar_t, which has the same size and values
// there; these two are the only place where one becomes the other.
namespace platform {

#ifdef _WIN32
inline const wchar_t* Wide(const char16_t* text) {
    return reinterpret_cast<const wchar_t*>(text);
}
inline wchar_t* Wide(char16_t* text) {
    return reinterpret_cast<wchar_t*>(text);
}
#else
inline const char16_t* Wide(const char16_t* text) {
    return text;
}
inline char16_t* Wide(char16_t* text) {
    return text;
}
#endif

}  // namespace platform
