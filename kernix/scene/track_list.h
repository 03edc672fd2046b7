// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "host/animation.h"
#include "host/array.h"
#include "host/ref.h"
#include "kernix/scene/track.h"

namespace kernix {

class AnimationModel;
class SceneModel;

// The tracks of one controller, one for each animation that has any.
class KERNIX_API TrackList {
public:
    explicit TrackList(SceneModel& scene);
    ~TrackList();

    vl::zr::Track* Find(const vl::zr::Animation* animation) const;
    void Add(vl::Ref<vl::zr::Track> track);
    void Remove(const AnimationModel* animation);
    vl::zr::Track* Active() const;  // of the scene's active animation, or null
    bool HasKeys() const;
    vl::Array* Words() const { return m_words.Get(); }

private:
    SceneModel& m_scene;
    std::vector<vl::Ref<vl::zr::Track>> m_tracks;
    vl::Ref<vl::Array> m_words;
    mutable std::size_t m_recent = 0;  // index of the track that Find returned last
};

}  // namespace kernix
