// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/scene/curves.h"

namespace zr {

// All numbers of the key that, inserted at `time`, leaves the curve as it is (a cubic rotation nearly so).
// The curve has at least one key; outside its keys it is constant, with slopes of 0. Interpolated rotations
// have unit length.
std::vector<float> KeyShownAt(const Curve& curve, float time, bool isRotation);

// The part of a curve from one time to another, on the curve's own times. It begins and ends with a key that
// holds the curve's value there; an infinite `from` or `to` leaves that end uncut. Numbers are cut exactly. A
// cubic rotation gets additional keys in the segments that are cut, enough to keep it within about a
// millionth of a radian.
//
//   linear 0@0, 4@4   from 1 to 3   ->   1@1, 3@3
Curve Cut(const Curve& curve, float from, float to, bool isRotation);

// The curve sampled at ascending times: a step curve stays one, any other becomes linear. A sample of a step
// curve takes the value of a key that follows within `slack` seconds.
Curve SampledAt(const Curve& curve, const std::vector<float>& times, double slack, bool isRotation);

}  // namespace zr
