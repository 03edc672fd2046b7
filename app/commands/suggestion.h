// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zr {

// The word closest to the given one, ignoring case; the first of several equally close ones. Empty when all
// of them differ in more than a third of the given word's characters.
std::string NearestWord(std::string_view word, const std::vector<std::string>& words);

}  // namespace zr
