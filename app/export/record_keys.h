// SPDX-License-Identifier: MIT
#pragma once

#include "app/export/tool_run.h"

namespace zr {

// Takes the keys of a finished run back into the scene's tracks for that animation, with the time mapped for
// everything else that the animation moves. A track whose keys came through unchanged keeps its own, slopes
// included.
void TakeBackKeys(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation,
                  const ExportOptions& options);

}  // namespace zr
