// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "app/operations/animations/node_match.h"

namespace zr {

struct BroughtAnimations {
    Animations animations;  // added to the receiving scene, in the order of the source scene
    std::vector<std::string> withoutPartner;  // animated in the source scene, without a partner here
};

// Copies the animations of `from` to `to`, onto the partners of the nodes they move: transforms, and morph
// weights where both meshes have the same number of targets.
BroughtAnimations BringAnimations(LoadedScene& from, LoadedScene& to, const NodePartners& partners);

}  // namespace zr
