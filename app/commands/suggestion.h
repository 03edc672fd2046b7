// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zr {

// The word closest to the given one, ignoring case; empty when every one differs in more than a third of the
// given word's characters. The first of several equally close ones.
std::string NearestWord(std::string_view word, const std::vector<std::string>& words);

}  // namespace zr
