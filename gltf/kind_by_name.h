// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "gltf/kinds.h"

namespace zr::gltf {

// The kind of which a member of an unknown extension holds an index, as its name suggests by the noun that it
// contains: "meshIndex", "leftBone".
std::optional<Kind> KindByName(std::string_view name);

}  // namespace zr::gltf
