// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Adds the keys that a finished run yields for the scene's transform tracks. A track whose keys did not
// change keeps its own, slopes included. added: receives the keys of records without a controller (a camera
// that turns to follow its target, or the target), with the index of the record for the node.
void CollectKeys(const Tool& tool, const kernix::AnimationModel& animation, const ExportOptions& options,
                 ReplacedKeys& replaced, std::vector<AddedKeys>& added);

}  // namespace zr
