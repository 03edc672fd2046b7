// SPDX-License-Identifier: MIT
#include "kernix/scene/sampled_controller_model.h"

#include <utility>

#include "kernix/scene/animation_model.h"

namespace kernix {

SampledControllerModel::SampledControllerModel(SceneModel& scene, std::string target)
    : m_target(std::move(target)), m_tracks(scene) {
    m_pTracks = m_tracks.Words();
}

SampledTrack* SampledControllerModel::AddSampledTrack(AnimationModel* animation) {
    if (vl::zr::Track* track = m_tracks.Find(animation)) return static_cast<SampledTrack*>(track);
    auto* track = new SampledTrack(animation);
    m_tracks.Add(vl::Ref<vl::zr::Track>::Adopt(track));
    return track;
}

vl::zr::Track* SampledControllerModel::AddTrack(vl::zr::Animation* animation) {
    return AddSampledTrack(static_cast<AnimationModel*>(animation));
}

void SampledControllerModel::SaveTrack(vl::Stream* stream, vl::zr::Track* track, int) {
    if (vl::zr::Track* resolved = Resolve(track)) resolved->Save(*stream);
}

void SampledControllerModel::LoadTrack(vl::Stream* stream, int, vl::zr::Track* track) {
    if (vl::zr::Track* resolved = Resolve(track)) resolved->Load(*stream);
}

void SampledControllerModel::RetimeTrack(float scale, float offset, vl::zr::Track* track) {
    if (vl::zr::Track* resolved = Resolve(track)) resolved->Retime(scale, offset);
}

}  // namespace kernix
