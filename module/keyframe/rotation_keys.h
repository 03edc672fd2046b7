// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/export_node.h"

// Converts rotation keys from one form to another. An exporter interpolates between two keys along the
// shorter arc, so a step of more than a quarter turn is divided by additional keys:
//
//   angle-axis 0 at 0 s, 4 rad at 30 s   ->   orientations 0, 4/3, 8/3, 4 rad at 0, 10, 20, 30 s
namespace zrt {

using RotationKeys = std::vector<ExportRotationKey>;

// The orientation of Euler angles in radians. order: an axis (0 X, 1 Y, 2 Z, 3 none) in two bits each, the
// first to turn about lowest.
vl::Quaternion EulerToQuaternion(const vl::Vector3<float>& angles, std::uint32_t order);

// Keys with vEuler and dwOrder gain qValue. Added keys carry time and qValue alone.
RotationKeys OrientationsFromEuler(const RotationKeys& keys);

// Keys with aaValue, each a step from the one before, gain qValue. Added keys carry time and qValue alone.
RotationKeys OrientationsFromSteps(const RotationKeys& keys);

// Keys with qValue gain aaValue: the first absolute, the others steps of at most half a turn.
void AddSteps(RotationKeys& keys);

}  // namespace zrt
