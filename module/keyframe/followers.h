// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/export_node.h"
#include "module/keyframe/aimed_object.h"

namespace zrt {

// A camera or light that turns with what it aims at.
struct Follower {
    ExportNode* record;
    AimedObject object;
    std::vector<float> times;  // at which to sample, ascending
    bool isDisplaced = false;  // whether it is shown away from its node at any of them
    bool turns = false;        // relative to its node, between them
};

// Samples each follower at its times. An object that tracks a target does not turn along the arc between two
// orientation keys, so times are added in between until the arcs are close enough.
void Follow(vl::zr::Scene* scene, std::vector<Follower>& followers);

}  // namespace zrt
