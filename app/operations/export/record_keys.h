// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Adds the keys that a finished run gives the scene's transform tracks for the animation. A track whose keys
// came through unchanged keeps its own, slopes included. added: receives the keys that the tools gave records
// which nothing moves (of what a camera aims at, or of the camera that turns to follow it), with the place of
// the record among all for the node.
void CollectKeys(const Tool& tool, const kernix::AnimationModel& animation, const ExportOptions& options,
                 ReplacedKeys& replaced, std::vector<AddedKeys>& added);

}  // namespace zr
