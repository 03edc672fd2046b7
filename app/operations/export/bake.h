// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/export_options.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The interpolations that an export may contain.
enum class Curves { kAny, kLinear };

// Whether any camera or light has a target to follow: the tools then give it additional keys.
bool HasAims(kernix::SceneModel& scene);

// The keyframe tools move, drop and insert keys as if every curve were linear. Before a run whose options
// change keys, other curves are therefore baked: cubic curves are sampled to within a hundred thousandth of
// their range, steps become two keys one float apart. Curves that the options do not affect keep their form,
// except with Curves::kLinear. Before keys are merged, keys that only rounding puts off a line are dropped,
// since the tools drop only keys that lie exactly on it.
//
// With ExportOptions::keepsCurves only linear curves are changed.
//
// The scene's curves are baked while this object exists and restored afterwards.
class BakedCurves {
public:
    BakedCurves(kernix::SceneModel& scene, const kernix::AnimationModel& animation,
                const ExportOptions& options, Curves curves);
    ~BakedCurves();

    BakedCurves(const BakedCurves&) = delete;
    BakedCurves& operator=(const BakedCurves&) = delete;

private:
    struct Original {
        kernix::TransformTrack* track;
        int keyType;
        kernix::StoredCurve curve;
    };

    kernix::SceneModel& m_scene;
    const kernix::AnimationModel& m_animation;
    std::vector<Original> m_originals;
};

}  // namespace zr
