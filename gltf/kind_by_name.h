// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string_view>

#include "gltf/kinds.h"

namespace zr::gltf {

// The kind of element that a member of an unknown extension refers to, guessed from the noun in its name:
// "meshIndex" a mesh, "leftBone" a node.
std::optional<Kind> KindByName(std::string_view name);

}  // namespace zr::gltf
