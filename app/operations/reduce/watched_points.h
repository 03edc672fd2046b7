// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/compare/evaluator.h"

namespace zr::reduce {

using compare::Affine;
using compare::Vec3;

// What is seen of a node: points in its own space whose places bound those of all that it draws, or that a
// skin draws by it, and whether its direction is seen too (cameras, lights, and moving nodes that nothing is
// drawn below: something else may hang on them).
struct Watched {
    std::vector<Vec3> points;
    bool direction = false;

    bool IsEmpty() const { return points.empty() && !direction; }
};

// Of every node of the document. Boxes around vertices stand for them: morph targets count with the greatest
// weights that they get, at rest or in any animation, instances each at its place.
std::vector<Watched> WatchedPoints(const compare::Evaluator& evaluator);

}  // namespace zr::reduce
