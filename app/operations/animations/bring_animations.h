// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/animations/animation_edit.h"

namespace zr {

struct BroughtAnimations {
    Animations animations;                    // new ones of the receiving scene, in the other's order
    std::vector<std::string> withoutPartner;  // what moves in the other scene and has no place here
};

// Gives `to` the animations of `from`, on the nodes of the same path: the names from the root on, and among
// brothers of one name their order. Transforms come along, and morph weights where the meshes have as many.
BroughtAnimations BringAnimations(LoadedScene& from, LoadedScene& to);

}  // namespace zr
