// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "app/operations/animations/node_match.h"

namespace zr {

struct BroughtAnimations {
    Animations animations;                    // new ones of the receiving scene, in the other's order
    std::vector<std::string> withoutPartner;  // what moves in the other scene and has no partner here
};

// Gives `to` the animations of `from`, on the partners of the nodes that they move. Transforms come along,
// and morph weights where the meshes have as many.
BroughtAnimations BringAnimations(LoadedScene& from, LoadedScene& to, const NodePartners& partners);

}  // namespace zr
