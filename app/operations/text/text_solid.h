// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/text/text_geometry.h"

namespace zr {

// Turns a flat mesh into a closed solid with its back at z = 0 and its front at z = depth, which is above 0.
// Every edge then belongs to two triangles, which traverse it in opposite directions; where the flat mesh
// touches itself at a point, the solid has a copy of that point for each part.
void AddDepth(TextGeometry& geometry, float depth);

}  // namespace zr
