// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "app/scene/curves.h"

namespace zr {

// The part of a curve from `from` to `to` (infinity: to its end), moved to begin at 0. Its first key has the
// value at `from`. Where the curve continues beyond `to`, the last key has the value at `to` or, if the curve
// jumps there, the value just before the jump.
//
//   linear 0@0, 4@4   from 1 to 3   ->   1@0, 3@2
Curve Sliced(const Curve& curve, float from, float to, bool isRotation);

// Adds an animation for each interval between the start, the cuts and the end of an animation; each begins at
// 0. cuts: seconds, ascending, between start and end. They are named "NAME 1", "NAME 2" and so on.
Animations CutAnimation(LoadedScene& loaded, kernix::AnimationModel& animation,
                        const std::vector<float>& cuts);

// Adds an animation for each node or material that an animation moves, without changing times. They are named
// "NAME NODE".
Animations SeparateAnimation(LoadedScene& loaded, kernix::AnimationModel& animation);

}  // namespace zr
