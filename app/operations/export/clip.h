// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <limits>
#include <unordered_map>

#include "kernix/scene/scene_model.h"

namespace zr {

// Which part of the scene's animations an export takes, and how its time goes. In this order: cut, faster,
// brought to 0, sampled. Whatever the keyframe tools do to time comes later.
struct ClipOptions {
    float from = 0;  // seconds of the scene's time
    float to = std::numeric_limits<float>::infinity();
    double speed = 1;           // how many times as fast
    bool startsAtZero = false;  // every animation begins at 0
    double frameRate = 0;       // keys at so many a second of the result, and at the end; 0: those there are

    bool IsWhole() const { return from <= 0 && to == std::numeric_limits<float>::infinity(); }
    bool MovesKeys() const { return speed != 1 || startsAtZero || frameRate != 0 || !IsWhole(); }
};

// The stretch of an animation that is exported, in the scene's time, and where its time goes.
struct Clip {
    float from = 0;
    float to = 0;
    double origin = 0;
    double speed = 1;

    float Map(float time) const { return static_cast<float>((double{time} - origin) / speed); }
    float Unmap(double time) const { return static_cast<float>(time * speed + origin); }
};

// The scene's animations as clips: from here on, the scene's tracks have their keys. The tracks' own
// remain available (Source). Every transform track is packed.
//
// Throws std::runtime_error, the scene unchanged, when nothing is left of an animation and when sampling
// would make too many keys.
class Clips {
public:
    Clips(kernix::SceneModel& scene, const ClipOptions& options);

    Clip Of(const kernix::AnimationModel& animation) const;

    // What a track held before: by place in kKeyTypes; the first one of a curve of numbers.
    const kernix::Curve& Source(const vl::zr::Track& track, std::size_t place) const;
    // Frees what can be read again.
    void Unload(const kernix::AnimationModel& animation) const;

private:
    void Measure(const ClipOptions& options);
    void Take(const kernix::AnimationModel& animation, const ClipOptions& options);

    kernix::SceneModel& m_scene;
    std::unordered_map<const kernix::AnimationModel*, Clip> m_clips;
    std::unordered_map<const vl::zr::Track*, std::array<kernix::StoredCurve, 3>> m_sources;
};

}  // namespace zr
