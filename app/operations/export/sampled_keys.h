// SPDX-License-Identifier: MIT
#pragma once

#include <unordered_map>

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/scene_changes.h"

namespace zr {

// An animation, and how the tools map the time of its clip: time * timeScale + timeOffset, in seconds.
struct PlayedAnimation {
    const kernix::AnimationModel* animation;
    float timeScale;
    float timeOffset;
    float start;  // of the exported animation

    bool MapsTime() const { return timeScale != 1 || timeOffset != 0; }
};

// The factors by which an export scales curves of numbers: those of lengths in world units, when the unit
// changes.
class ValueFactors {
public:
    ValueFactors(const LoadedScene& loaded, const ExportOptions& options);

    double Of(const vl::zr::Track& track) const;

private:
    std::unordered_map<const kernix::TrackList*, double> m_factors;  // other than 1
};

// Adds the keys of number curves (weights, pointers) that change because the animation's time or the scene's
// unit does.
void CollectSampledKeys(const PlayedAnimation& played, const ValueFactors& factors, ReplacedKeys& replaced);

}  // namespace zr
