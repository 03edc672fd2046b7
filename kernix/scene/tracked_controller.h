// SPDX-License-Identifier: MIT
#pragma once

#include "host/controller.h"
#include "kernix/scene/animation_model.h"
#include "kernix/scene/track_list.h"

namespace kernix {

// What controllers have in common, whatever they move: a track of one type for each animation. A null track
// stands for the active animation's.
template <typename Base, typename TrackType>
class TrackedController : public Base {
public:
    vl::zr::Track* AddTrack(vl::zr::Animation* animation) override {
        return TrackFor(static_cast<AnimationModel*>(animation));
    }
    vl::zr::Track* GetTrack(vl::zr::Animation* animation) override { return m_tracks.Find(animation); }
    void SaveTrack(vl::Stream* stream, vl::zr::Track* track, int) override {
        if (TrackType* resolved = Resolve(track)) resolved->Save(*stream);
    }
    void LoadTrack(vl::Stream* stream, int, vl::zr::Track* track) override {
        if (TrackType* resolved = Resolve(track)) resolved->Load(*stream);
        Changed();
    }
    bool IsAnimated(int) override { return m_tracks.HasKeys(); }
    vl::Interface* GetTrackObject(vl::zr::Track* track, int) override { return Resolve(track); }
    void RetimeTrack(float scale, float offset, vl::zr::Track* track) override {
        if (TrackType* resolved = Resolve(track)) resolved->Retime(scale, offset);
        Changed();
    }

    // The track itself, or the active animation's for null; null when there is none.
    TrackType* Resolve(vl::zr::Track* track) const {
        return static_cast<TrackType*>(track != nullptr ? track : m_tracks.Active());
    }
    TrackList& Tracks() { return m_tracks; }

protected:
    explicit TrackedController(SceneModel& scene) : m_tracks(scene) { this->m_pTracks = m_tracks.Words(); }

    // The animation's track, made when there is none.
    TrackType* TrackFor(AnimationModel* animation) {
        if (vl::zr::Track* track = m_tracks.Find(animation)) return static_cast<TrackType*>(track);
        const auto track = vl::Ref<TrackType>::AdoptNew(new TrackType(animation));
        m_tracks.Add(vl::Ref<vl::zr::Track>::Share(track.Get()));
        return track.Get();
    }

    // Keys may have changed, or are about to.
    virtual void Changed() {}

private:
    TrackList m_tracks;
};

}  // namespace kernix
