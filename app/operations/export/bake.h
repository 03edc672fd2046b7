// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/export_options.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The interpolations that an export can contain.
enum class Curves { kAny, kLinear };

// Whether some camera or light turns with what it aims at: the tools then give it further keys.
bool HasAims(kernix::SceneModel& scene);

// The keyframe tools move, drop and insert keys as if every curve were linear. Before a run whose options
// change keys, curves of other forms are baked: cubic ones are sampled within a hundred thousandth of their
// range, steps become two keys a smallest step apart. Curves that the options leave as they are keep their
// form, but with Curves::kLinear. Where keys are merged, keys that rounding alone put off the line go first:
// the tools drop those only that lie on it to the bit.
//
// With ExportOptions::keepsCurves only straight curves are touched.
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
