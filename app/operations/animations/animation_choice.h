// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/scene/animations_of.h"

namespace zr {

// "the scene has 0 "walk", 1 "run"", shortened when there are many.
std::string Candidates(const std::vector<kernix::AnimationModel*>& animations);

// The animation of that name, or of that index where no animation has the name. Throws std::runtime_error
// that lists the candidates when nothing or more than one animation matches.
kernix::AnimationModel* ChooseAnimation(kernix::SceneModel& scene, const std::string& name);

// The same for several names, in their order. Also throws std::runtime_error when two names choose the same
// animation.
std::vector<kernix::AnimationModel*> ChooseAnimations(kernix::SceneModel& scene,
                                                      const std::vector<std::string>& names);

}  // namespace zr
