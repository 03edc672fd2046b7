// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/compare/drawn_comparison.h"

namespace zr {

// Reads "LENGTH[,ANGLE[,VALUE]]": lengths in scene units, m, cm or mm, angles in rad or deg. What the text
// leaves out stays as it is. Throws UsageError.
void ReadTolerance(const std::string& text, compare::Tolerance& tolerance);

}  // namespace zr
