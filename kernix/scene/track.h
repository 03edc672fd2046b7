// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <utility>

#include "host/interface.h"
#include "host/stream.h"

namespace kernix {
class AnimationModel;
class TrackList;
}  // namespace kernix

namespace vl::zr {

// A controller's keys for one animation. The controller owns its tracks.
class Track : public Interface {
public:
    explicit Track(kernix::AnimationModel* animation) : m_animation(animation) {}

    kernix::AnimationModel* GetAnimation() const { return m_animation; }

    kernix::TrackList* GetList() const { return m_list; }

    // Times of the first and the last key; nothing when there is no key.
    virtual std::optional<std::pair<float, float>> GetRange() = 0;
    virtual int GetKeyCount() = 0;  // of all types
    virtual void Save(Stream& stream) = 0;
    virtual bool Load(Stream& stream) = 0;  // false, with the track empty, when the content is not a track
    virtual void Retime(float scale, float offset) = 0;

    const char* GetTypeName() override { return "zr_track"; }

private:
    friend class kernix::TrackList;
    kernix::AnimationModel* m_animation;
    kernix::TrackList* m_list = nullptr;  // that holds it
};

}  // namespace vl::zr
