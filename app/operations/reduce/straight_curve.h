// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/compare/key_curve.h"

namespace zr::reduce {

// A cubic curve as a linear one with more keys, within a hundred thousandth of its range (at least of 1); any
// other curve as it is.
compare::KeyCurve Straightened(const compare::KeyCurve& curve, bool isRotation);

}  // namespace zr::reduce
