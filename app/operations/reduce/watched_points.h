// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/compare/evaluator.h"

namespace zr::reduce {

using compare::Affine;
using compare::Vec3;

// What is visible of a node: points in its own space that bound everything drawn by it, or by skins that use
// it as a joint, and whether its direction matters too (cameras, lights, and animated nodes with nothing
// drawn below them, to which something else may be attached).
struct Watched {
    std::vector<Vec3> points;
    bool direction = false;

    bool IsEmpty() const { return points.empty() && !direction; }
};

// The watched points of every node of the document: corners of bounding boxes, which allow for morph targets
// with their greatest weights, at rest or in any animation, and for all instances.
std::vector<Watched> WatchedPoints(const compare::Evaluator& evaluator);

}  // namespace zr::reduce
