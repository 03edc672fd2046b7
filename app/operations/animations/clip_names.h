// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr {

// Names for a file of each animation, without folder and ending, no two alike whatever their case. What other
// systems do not take in a file's name becomes "_"; an animation without a name is "animation N".
std::vector<std::string> ClipNames(const std::vector<std::string>& animations);

}  // namespace zr
