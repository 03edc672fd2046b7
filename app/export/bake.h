// SPDX-License-Identifier: MIT
#pragma once

#include "app/export/export_options.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The keyframe tools move, drop and insert keys as if every curve were straight between them. Before a run
// whose options change keys, curves of other forms are made straight: cubic ones are sampled within a hundred
// thousandth of their range, steps become two keys a smallest step apart. Curves that the options leave as
// they are keep their form.
void BakeCurves(kernix::SceneModel& scene, const ExportOptions& options);

}  // namespace zr
