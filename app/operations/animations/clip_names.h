// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr {

// File names for the animations, without folder and extension, unique even when case is ignored. Characters
// that some systems do not allow in file names become "_"; an animation without a name is "animation N".
std::vector<std::string> ClipNames(const std::vector<std::string>& animations);

}  // namespace zr
