// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/services/poly_boolean_contacts.h"

namespace zr {

// Replaces every group of contours that cross by the outline of what they wind round, on the same grid. What
// comes out does not cross, so that inside and outside alternate from contour to contour. Contours that
// cross nothing stay as they are; when there are no others, false, and nothing changes.
bool UniteCrossing(std::vector<GridLoop>& loops);

}  // namespace zr
