// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <limits>
#include <unordered_map>

#include "kernix/scene/scene_model.h"

namespace zr {

// Which part of the scene's animations is exported, and how its time is changed, in this order: cut, sped up,
// moved to begin at 0, sampled. The keyframe tools change time afterwards.
struct ClipOptions {
    float from = 0;  // seconds of the scene's time
    float to = std::numeric_limits<float>::infinity();
    double speed = 1;           // factor of speed, above 0
    bool startsAtZero = false;  // every animation begins at 0
    double frameRate = 0;       // keys per second of the result, and one at the end; 0: keep the keys

    bool IsWhole() const { return from <= 0 && to == std::numeric_limits<float>::infinity(); }
    bool MovesKeys() const { return speed != 1 || startsAtZero || frameRate != 0 || !IsWhole(); }
};

// The exported range of an animation, in the scene's time (seconds), and how that maps to the time of the
// result.
struct Clip {
    float from = 0;
    float to = 0;
    double origin = 0;
    double speed = 1;

    float Map(float time) const { return static_cast<float>((double{time} - origin) / speed); }
    float Unmap(double time) const { return static_cast<float>(time * speed + origin); }
};

// Turns the scene's animations into clips: replaces the keys of the scene's tracks, and keeps the originals
// available (Source). Every transform track must be packed.
//
// Throws std::runtime_error, leaving the scene unchanged, when nothing is left of an animation and when
// sampling would create too many keys.
class Clips {
public:
    Clips(kernix::SceneModel& scene, const ClipOptions& options);

    Clip Of(const kernix::AnimationModel& animation) const;

    // A track's original curve. place: index in kKeyTypes; 0 for a track of numbers.
    const kernix::Curve& Source(const vl::zr::Track& track, std::size_t place) const;
    // Frees the memory of the animation's curves that can be read again.
    void Unload(const kernix::AnimationModel& animation) const;

private:
    void Measure(const ClipOptions& options);
    void ClipTracks(const kernix::AnimationModel& animation, const ClipOptions& options);

    kernix::SceneModel& m_scene;
    std::unordered_map<const kernix::AnimationModel*, Clip> m_clips;
    std::unordered_map<const vl::zr::Track*, std::array<kernix::StoredCurve, 3>> m_sources;
};

}  // namespace zr
