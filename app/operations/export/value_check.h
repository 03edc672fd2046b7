// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/clip.h"
#include "app/operations/export/motion_report.h"
#include "app/operations/export/sampled_keys.h"
#include "app/scene/scene_changes.h"

namespace zr {

// Compares the curves of numbers (weights, pointers) that the scene had before it was cut into clips with the
// new ones, and says in the report where they differ most. Looks halfway between keys and halfway to the ends
// of the clip, where steps do not jump.
void CheckValues(const PlayedAnimation& played, const Clips& clips, const ValueFactors& factors,
                 const ReplacedKeys& replaced, MotionReport& report);

}  // namespace zr
