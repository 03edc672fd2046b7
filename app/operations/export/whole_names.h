// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/tool_run.h"

namespace zr {

// The tools count bytes (of wide names UTF-16 units) where they cut names. Leaves whole characters of the
// names of records and materials: what a cut left of one goes, and a name that equals another one then gets a
// number where names have to differ, within the same limit.
void MakeNamesWhole(const Tool& tool);

}  // namespace zr
