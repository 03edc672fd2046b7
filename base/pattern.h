// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace zr {

// Whether the whole text fits the pattern, as shells match names: * stands for any bytes, ? for one, [a-z]
// for one of a set, [!a-z] for one outside it, and a backslash takes the byte after it as it is.
bool FitsPattern(std::string_view text, std::string_view pattern);

}  // namespace zr
