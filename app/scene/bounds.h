// SPDX-License-Identifier: MIT
#pragma once

#include <limits>

#include "app/scene/loaded_scene.h"

namespace zr {

// A box along the axes; empty until it is widened.
struct Bounds {
    static constexpr double kFar = std::numeric_limits<double>::infinity();
    vl::Vector3<double> low{kFar, kFar, kFar};
    vl::Vector3<double> high{-kFar, -kFar, -kFar};

    bool IsEmpty() const { return !(low.x <= high.x); }
    void Widen(const vl::Vector3<double>& point);
    // Holds all of `box` after the transform.
    void Widen(const Bounds& box, const vl::Matrix4<double>& m);
};

// Holds every vertex of the scene's meshes where they stand at rest, skinned ones where their joints put
// them. May be larger than what is shown: corners stand for vertices. Morph targets and instances do not
// count.
Bounds BoundsAtRest(const LoadedScene& loaded);

}  // namespace zr
