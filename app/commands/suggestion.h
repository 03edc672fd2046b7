// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zr {

// The word most like the given one, case apart, or an empty text when none is like it: at most a third of its
// characters differ. Of equally like words the first.
std::string NearestWord(std::string_view word, const std::vector<std::string>& words);

}  // namespace zr
