// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/services/poly_boolean_tessellator.h"

namespace zr {

// Replaces flat triangles, which corners in line leave behind: a flat triangle and its neighbour across the
// longest edge exchange their diagonal wherever both become less flat for it. The number of triangles and the
// area they cover stay. `corners` holds triangles three by three, counter-clockwise, edge to edge.
//
//   a, b, c in line, d beside them:    (a, b, c), (a, c, d)  ->  (a, b, d), (b, c, d)
void FlipFlatTriangles(std::vector<TessPoint*>& corners);

}  // namespace zr
