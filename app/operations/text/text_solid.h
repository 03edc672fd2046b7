// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/text/text_geometry.h"

namespace zr {

// Makes a flat mesh a closed solid from z = 0 to z = depth, above 0: its back, its front and its sides. Every
// edge then belongs to two triangles, which run along it in opposite directions; where the flat mesh touches
// itself in a point, the solid has that point once for each side.
void AddDepth(TextGeometry& geometry, float depth);

}  // namespace zr
