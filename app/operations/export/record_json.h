// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/export/tool_run.h"

namespace zr {

// Writes the records themselves: an object {"start", "end", "frameRate", "nodes"} with a node for each
// record. Times are seconds; matrices 16 numbers, column by column; rotations x, y, z, w. Throws
// std::runtime_error.
void WriteRecordJson(const Tool& tool, const ExportOptions& options, const std::filesystem::path& file);

}  // namespace zr
