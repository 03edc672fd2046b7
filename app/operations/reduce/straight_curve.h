// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/compare/key_curve.h"

namespace zr::reduce {

// Converts a cubic curve to a linear one with more keys, to within a hundred thousandth of its greatest
// magnitude (at least 1). Returns any other curve unchanged.
compare::KeyCurve Straightened(const compare::KeyCurve& curve, bool isRotation);

}  // namespace zr::reduce
