// SPDX-License-Identifier: MIT
#pragma once

#include <limits>

#include "app/scene/loaded_scene.h"

namespace zr {

// An axis-aligned box; empty until it is widened.
struct Bounds {
    static constexpr double kFar = std::numeric_limits<double>::infinity();
    vl::Vector3<double> low{kFar, kFar, kFar};
    vl::Vector3<double> high{-kFar, -kFar, -kFar};

    bool IsEmpty() const { return !(low.x <= high.x); }
    void Widen(const vl::Vector3<double>& point);
    // Widens the box to contain all of `box` transformed by `m`.
    void Widen(const Bounds& box, const vl::Matrix4<double>& m);
};

// Contains every vertex of the scene's meshes at rest, skinned ones as their joints place them. Conservative:
// transforms corners of boxes instead of vertices. Ignores morph targets and instances.
Bounds BoundsAtRest(const LoadedScene& loaded);

}  // namespace zr
