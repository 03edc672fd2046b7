// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "kernix/scene/scene_model.h"

namespace zr {

// The scene's animations, in list order.
inline std::vector<kernix::AnimationModel*> AnimationsOf(kernix::SceneModel& scene) {
    std::vector<kernix::AnimationModel*> animations;
    for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(scene.m_pAnimations)) {
        animations.push_back(static_cast<kernix::AnimationModel*>(animation));
    }
    return animations;
}

}  // namespace zr
