// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "app/scene/curves.h"

namespace zr {

// The part of a curve from one time up to another, infinity for all the rest, moved to begin at 0. It begins
// with a key that holds what the curve shows at `from`, and ends with one for `to` where the curve goes on
// beyond: what it shows just before it jumps, where it jumps there.
//
//   linear 0@0, 4@4   from 1 to 3   ->   1@0, 3@2
Curve Sliced(const Curve& curve, float from, float to, bool isRotation);

// New animations, one for each interval between the start, the cuts and the end of an animation; each begins
// at 0. cuts: seconds, ascending, between start and end. Named "NAME 1", "NAME 2" and so on.
Animations CutAnimation(LoadedScene& loaded, kernix::AnimationModel& animation,
                        const std::vector<float>& cuts);

// New animations, one for each node or material that the animation moves, at its times. Named "NAME NODE".
Animations SeparateAnimation(LoadedScene& loaded, kernix::AnimationModel& animation);

}  // namespace zr
