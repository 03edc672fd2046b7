// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/clip.h"
#include "app/operations/export/motion_report.h"
#include "app/operations/export/sampled_keys.h"
#include "app/operations/export/tool_run.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Compares the motion that the scene had before it was cut into clips with that of the records' nodes and the
// new keys, at times spread over each animation and at those of keys, and says in the report where they
// differ most. All nodes take part in turn; what the check may cost is shared by all animations. added: by
// the place of the record among all.
void CheckMotion(LoadedScene& loaded, const Tool& records, const ExportOptions& options, const Clips& clips,
                 const std::vector<PlayedAnimation>& animations, const ReplacedKeys& replaced,
                 const std::vector<AddedKeys>& added, MotionReport& report);

}  // namespace zr
