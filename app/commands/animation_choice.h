// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "kernix/scene/scene_model.h"

namespace zr {

// The scene's animations, in their order.
std::vector<kernix::AnimationModel*> AnimationsOf(kernix::SceneModel& scene);

// The animation of that name, or of that index where no animation has the name. Throws std::runtime_error that
// lists the candidates when nothing or more than one animation matches.
kernix::AnimationModel* ChooseAnimation(kernix::SceneModel& scene, const std::string& name);

}  // namespace zr
