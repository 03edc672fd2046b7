// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/operations/clean/clean_scene.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// "#4" for element 4 when it has no name.
std::string NameOr(std::string name, std::size_t index);

// What the steps left in the scene only because something refers to it.
std::vector<HeldElement> HeldElements(LoadedScene& loaded, const std::array<bool, kCleanSteps>& ran);

// Nodes whose mesh looks like another one at its place, and what kept them. The document is only read.
std::vector<HeldElement> HeldTwins(gltf::Document& document, zr_CLEANER& cleaner, vl::Context* context,
                                   const CleanOptions& options);

}  // namespace zr
