// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/export_options.h"
#include "host/ref.h"
#include "host/stream.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The keys that a track had.
struct TrackKeys {
    vl::zr::Track* track;
    vl::Ref<vl::Stream> keys;
};

// The forms of curve that an export can hold.
enum class Curves { kAny, kStraight };

// The keyframe tools move, drop and insert keys as if every curve were straight between them. Before a run
// whose options change keys, curves of other forms are made straight: cubic ones are sampled within a hundred
// thousandth of their range, steps become two keys a smallest step apart. Curves that the options leave as
// they are keep their form, but with Curves::kStraight. Where keys are merged, keys that rounding alone put
// off the straight line go first: the tools drop those only that lie on it to the bit.
//
// Returns the keys of the tracks that it changes.
std::vector<TrackKeys> BakeCurves(kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                                  const ExportOptions& options, Curves curves);

void PutBack(kernix::SceneModel& scene, const std::vector<TrackKeys>& tracks);

}  // namespace zr
