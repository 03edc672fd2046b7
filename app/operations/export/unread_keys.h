// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Throws std::runtime_error that names the channel when the export would have to change keys that cannot be
// read: move them in time or space, or leave them out. Otherwise a line that names the keys that are exported
// unchanged; empty when all could be read. tool: a finished run on the scene.
std::string CheckUnreadKeys(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options);

// The same for the records of an animation, which cannot hold such keys.
void CheckUnreadRecordKeys(const LoadedScene& loaded, const kernix::AnimationModel* animation,
                           const ExportOptions& options);

}  // namespace zr
