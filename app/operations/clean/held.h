// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <string>
#include <vector>

#include "app/operations/clean/clean_scene.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The name or, if it is empty, the index: "#4".
std::string NameOr(std::string name, std::size_t index);

// Elements that the steps kept only because something refers to them.
std::vector<HeldElement> HeldElements(LoadedScene& loaded, const std::array<bool, kCleanSteps>& ran);

// Nodes whose mesh looks like another one in the same place, and why they were kept. The document is
// unchanged in the end; after an exception it must not be used.
std::vector<HeldElement> HeldTwins(gltf::Document& document, zr_CLEANER& cleaner, vl::Context* context,
                                   const CleanOptions& options);

}  // namespace zr
