// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/scene/animations_of.h"

namespace zr {

// "the scene has 0 "walk", 1 "run"", shortened when there are many.
std::string Candidates(const std::vector<kernix::AnimationModel*>& animations);

// The animation with that name or, if there is none, with that index. Throws std::runtime_error, listing the
// candidates, unless exactly one animation matches.
kernix::AnimationModel* ChooseAnimation(kernix::SceneModel& scene, const std::string& name);

// The same for several names, in the order given. Also throws std::runtime_error when two names choose the
// same animation.
std::vector<kernix::AnimationModel*> ChooseAnimations(kernix::SceneModel& scene,
                                                      const std::vector<std::string>& names);

}  // namespace zr
