// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/clip.h"
#include "app/operations/export/motion_report.h"
#include "app/operations/export/sampled_keys.h"
#include "app/operations/export/tool_run.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Compares the original motion of the scene, before it was cut into clips, with that of the records and the
// new keys, at times spread over each animation and at keys. Sets the greatest deviations, and their places,
// in the report. All nodes take part in turn, within a budget that all animations share. added: with the
// index of the record for the node.
void CheckMotion(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips,
                 const std::vector<PlayedAnimation>& animations, const ReplacedKeys& replaced,
                 const std::vector<AddedKeys>& added, MotionReport& report);

}  // namespace zr
