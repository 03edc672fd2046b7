// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "app/commands/json_object.h"
#include "app/operations/animations/animation_edit.h"

namespace zr {

// An entry of an animation list.
struct AnimationSummary {
    std::size_t index;
    std::string name;
    double start;  // seconds
    double end;
    std::size_t tracks;
    std::size_t keys;

    std::string Text() const;  // "\"walk\"  0 to 1.5 s, 3 tracks, 12 keys"
    JsonObject Json() const;
};
AnimationSummary Summarize(kernix::SceneModel& scene, kernix::AnimationModel& animation, std::size_t index);

}  // namespace zr
