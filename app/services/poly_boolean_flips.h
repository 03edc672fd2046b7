// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/services/poly_boolean_tessellator.h"

namespace zr {

// Replaces flat triangles, which collinear corners leave behind: a flat triangle and its neighbour across the
// longest edge exchange their diagonal wherever both become less flat for it. Neither the number of triangles
// nor the area they cover changes. `corners` holds triangles three by three, counter-clockwise, edge to edge.
//
//   a, b, c collinear, d beside them:    (a, b, c), (a, c, d)  ->  (a, b, d), (b, c, d)
void FlipFlatTriangles(std::vector<TessPoint*>& corners);

}  // namespace zr
