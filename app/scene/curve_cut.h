// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/scene/curves.h"

namespace zr {

// What a curve of at least one key shows at a time, as all numbers of a key that goes on as the curve does:
// put there, it leaves the curve as it is. Outside its keys a curve stays, with slopes of 0. The value of a
// rotation is of unit length.
std::vector<float> KeyShownAt(const Curve& curve, float time, bool isRotation);

// The part of a curve from one time to another, at its own times; it begins and ends with a key that holds
// what the curve shows there. From minus infinity, or to infinity: that end stays as it is. Numbers are cut
// exactly. A cubic rotation gets further keys in the piece that is cut, as many as keep it within a
// millionth of a radian or so.
//
//   linear 0@0, 4@4   from 1 to 3   ->   1@1, 3@3
Curve Cut(const Curve& curve, float from, float to, bool isRotation);

// What a curve shows at the times, ascending ones: steps stay steps, everything else is linear. A time that
// the key of a step follows within `slack` seconds shows that key.
Curve SampledAt(const Curve& curve, const std::vector<float>& times, double slack, bool isRotation);

}  // namespace zr
