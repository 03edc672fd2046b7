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
    std::vector<float> times;  // at which to look, ascending
    bool isDisplaced = false;  // at one of them shown elsewhere than its node stands
    bool turns = false;        // against its node, between them
};

// Looks at each follower at its times. What is aimed at passes by an object on no arc that two keys of its
// orientation describe: adds times between, as many as the arcs need.
void Follow(vl::zr::Scene* scene, std::vector<Follower>& followers);

}  // namespace zrt
