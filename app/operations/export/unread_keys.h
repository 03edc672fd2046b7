// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Throws std::runtime_error, naming the channel, if the export would have to change keys that cannot be read:
// move them in time or space, or leave them out. Otherwise returns a line that names the unreadable keys,
// which are exported unchanged; empty: there are none. tool: a finished run on the scene.
std::string CheckUnreadKeys(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options);

// The same for records, which cannot contain unreadable keys: throws if the animation has any that move
// nodes.
void CheckUnreadRecordKeys(const LoadedScene& loaded, const kernix::AnimationModel* animation,
                           const ExportOptions& options);

}  // namespace zr
