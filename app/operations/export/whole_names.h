// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/tool_run.h"

namespace zr {

// The tools cut names after a number of bytes (of wide names: UTF-16 units), possibly within a character.
// Removes incomplete characters from the names of records and materials. If names have to be unique, a name
// that then equals another gets a number, within the same limit.
void MakeNamesWhole(const Tool& tool);

}  // namespace zr
