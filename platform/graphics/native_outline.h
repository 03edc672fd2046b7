// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "platform/windows/gdi.h"

struct FT_Outline_;

namespace platform {

// Largest distance, in device units, between a cubic piece and the quadratic pieces written for it.
constexpr double kCubicTolerance = 0.01;

// Appends the polygons of an outline in font units to `bytes` as native records, scaled by ppem / unitsPerEm
// to device units. On-curve and quadratic points are copied one to one; a cubic piece becomes as many
// quadratic records as the tolerance requires. The line that closes a polygon is implied. A contour of one
// point draws nothing and is left out. False when a coordinate does not fit a FIXED; `bytes` is unspecified
// then.
bool AppendNativeOutline(const FT_Outline_& outline, int ppem, int unitsPerEm, std::vector<BYTE>& bytes);

}  // namespace platform
