// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/tool_run.h"
#include "app/scene/curves.h"

namespace zr {

// The keys of a record's track, in strictly ascending order; nothing where the record has none of the type.
Curve RecordCurve(const ExportNode& record, int keyType);

// Takes the keys of a finished run back into the scene's tracks for that animation, with the time mapped for
// everything else that the animation moves. A track whose keys came through unchanged keeps its own, slopes
// included.
void TakeBackKeys(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation,
                  const ExportOptions& options);

}  // namespace zr
