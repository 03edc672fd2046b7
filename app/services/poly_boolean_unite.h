// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/services/poly_boolean_contacts.h"

namespace zr {

// Replaces each group of crossing contours by the outline of the region that they wind around, on the same
// grid. The result does not cross, so that inside and outside alternate from contour to contour. Contours
// that cross nothing stay as they are. False, with nothing changed, if no contours cross. Throws
// TooIntricate.
bool UniteCrossing(std::vector<GridLoop>& loops);

}  // namespace zr
