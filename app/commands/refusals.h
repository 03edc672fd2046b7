// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "gltf/references.h"

namespace zr {

// Why removable elements stayed: a line for each extension, with the first place where it occurs.
std::vector<std::string> RefusalLines(std::string_view what, const std::vector<gltf::OpaqueUse>& uses);

}  // namespace zr
