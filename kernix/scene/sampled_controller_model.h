// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "host/controller.h"
#include "kernix/scene/sampled_track.h"
#include "kernix/scene/track_list.h"

namespace kernix {

// Moves anything that is no transform: morph weights, a property of a material or object.
class KERNIX_API SampledControllerModel final : public vl::zr::Controller {
public:
    SampledControllerModel(SceneModel& scene, std::string target);

    vl::zr::Track* AddTrack(vl::zr::Animation* animation) override;
    vl::zr::Track* GetTrack(vl::zr::Animation* animation) override { return m_tracks.Find(animation); }
    void SaveTrack(vl::Stream* stream, vl::zr::Track* track, int mode) override;
    void LoadTrack(vl::Stream* stream, int mode, vl::zr::Track* track) override;
    bool IsAnimated(int) override { return m_tracks.HasKeys(); }
    vl::Interface* GetTrackObject(vl::zr::Track* track, int) override { return Resolve(track); }
    void RetimeTrack(float scale, float offset, vl::zr::Track* track) override;

    SampledTrack* AddSampledTrack(AnimationModel* animation);
    TrackList& Tracks() { return m_tracks; }

    // What it moves, in the words of whoever made the scene.
    const std::string& GetTarget() const { return m_target; }

private:
    vl::zr::Track* Resolve(vl::zr::Track* track) const { return track != nullptr ? track : m_tracks.Active(); }

    std::string m_target;
    TrackList m_tracks;
};

}  // namespace kernix
