// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace zr {

// Whether the whole text matches the pattern, by the rules of shells: * stands for any bytes, ? for one,
// [a-z] for one of a set, [!a-z] for one outside it, and a backslash quotes the byte after it.
bool FitsPattern(std::string_view text, std::string_view pattern);

}  // namespace zr
