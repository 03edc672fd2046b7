// SPDX-License-Identifier: MIT
#pragma once

#include <unordered_map>

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/scene_changes.h"

namespace zr {

// An animation and where the tools bring the time of its clip: time * scale + offset.
struct PlayedAnimation {
    const kernix::AnimationModel* animation;
    float timeScale;
    float timeOffset;
    float start;  // of what the export makes of it

    bool MapsTime() const { return timeScale != 1 || timeOffset != 0; }
};

// What an export multiplies the values of curves of numbers by: those that are lengths of the world.
class ValueFactors {
public:
    ValueFactors(const LoadedScene& loaded, const ExportOptions& options);

    double Of(const vl::zr::Track& track) const;

private:
    std::unordered_map<const kernix::TrackList*, double> m_factors;  // other than 1
};

// Adds the keys of the curves of numbers (weights, pointers) that change with the animation's time or the
// scene's unit.
void CollectSampledKeys(const PlayedAnimation& played, const ValueFactors& factors, ReplacedKeys& replaced);

}  // namespace zr
