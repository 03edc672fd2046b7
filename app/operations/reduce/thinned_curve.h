// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/compare/key_curve.h"

namespace zr::reduce {

// The same curve within a tolerance: of vectors their distance, of rotations their angle (radians). Unchanged
// where no key can be dropped. straight: the curve as Straightened() has it.
compare::KeyCurve ThinnedCurve(const compare::KeyCurve& curve, const compare::KeyCurve& straight,
                               bool isRotation, double tolerance);

}  // namespace zr::reduce
