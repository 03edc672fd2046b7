// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"
#include "base/file_transaction.h"

namespace zr {

// Writes the records themselves: an object {"start", "end", "frameRate", "nodes"} with a node for each
// record. Times are seconds; matrices 16 numbers, column by column; rotations x, y, z, w. Throws Error.
void WriteRecordJson(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options,
                     OutputFile& file);

}  // namespace zr
