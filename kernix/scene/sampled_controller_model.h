// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>

#include "kernix/scene/sampled_track.h"
#include "kernix/scene/tracked_controller.h"

namespace kernix {

// Animates anything that is not a transform: morph weights, a property of a material or object.
class KERNIX_API SampledControllerModel final : public TrackedController<vl::zr::Controller, SampledTrack> {
public:
    SampledControllerModel(SceneModel& scene, std::string target)
        : TrackedController(scene), m_target(std::move(target)) {}

    SampledTrack* AddSampledTrack(AnimationModel* animation) { return TrackFor(animation); }

    // What it animates, as named by whoever built the scene.
    const std::string& GetTarget() const { return m_target; }

private:
    std::string m_target;
};

}  // namespace kernix
