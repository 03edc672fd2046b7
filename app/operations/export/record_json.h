// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"
#include "gltf/json_stream.h"

namespace zr {

// Writes the records of a run: an object {"start", "end", "frameRate", "nodes"} with a node for each record.
// named: the animation whose name comes first as "name"; null: none. Times are seconds; matrices are 16
// numbers in column-major order; rotations are x, y, z, w. Throws Error.
void WriteRecordJson(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options,
                     const kernix::AnimationModel* named, gltf::JsonStream& out);

}  // namespace zr
