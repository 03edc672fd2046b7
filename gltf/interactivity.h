// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "gltf/json.h"
#include "gltf/walk.h"

namespace zr::gltf {

inline constexpr std::string_view kInteractivity = "KHR_interactivity";

// Visits the references of a behaviour graph: literal indices that its nodes use as the parameters of a
// pointer ("/nodes/{nodeIndex}/scale") or to name an animation or a node, as values; parameters that other
// nodes compute, as Dynamic. Pointers without parameters are visited as pointers.
void VisitInteractivity(Json& extension, Visitor& visitor, Place& place);

}  // namespace zr::gltf
