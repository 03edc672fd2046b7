// SPDX-License-Identifier: MIT
#pragma once

#include <fontconfig/fontconfig.h>

#include <string>

namespace platform {

// Convert text up to its terminator or first malformed character.
std::string ToUtf8(const char16_t* text);
std::u16string ToUtf16(const FcChar8* text);

}  // namespace platform
