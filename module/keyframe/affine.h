// SPDX-License-Identifier: MIT
#pragma once

#include "host/math.h"

namespace zrt {

// The scale of a decomposed transform, negative if the transform mirrors.
inline vl::Vector3<float> SignedScale(const vl::AffineParts& parts) {
    return {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f};
}

inline vl::Vector3<float> Negated(const vl::Vector3<float>& v) {
    return {-v.x, -v.y, -v.z};
}

// The angle in radians above which scale axes count as turned and a rotation counts as one.
inline constexpr float kTurnTolerance = 0.001f;

// A transform none of whose elements differs by more from the identity's counts as the identity.
inline constexpr double kIdentityTolerance = 1.000000013351432e-10;

}  // namespace zrt
