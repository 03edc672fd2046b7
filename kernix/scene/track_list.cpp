// SPDX-License-Identifier: MIT
#include "kernix/scene/track_list.h"

#include <algorithm>

#include "kernix/array.h"
#include "kernix/scene/animation_model.h"
#include "kernix/scene/scene_model.h"

namespace kernix {

TrackList::TrackList(SceneModel& scene) : m_scene(scene), m_words(vl::Ref<vl::Array>::Adopt(CreateArray())) {}

TrackList::~TrackList() = default;

// Callers ask for the animations in the order of the tracks, or for one of them again and again.
vl::zr::Track* TrackList::Find(const vl::zr::Animation* animation) const {
    const std::size_t count = m_tracks.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t index = (m_recent + i) % count;
        if (m_tracks[index]->GetAnimation() != animation) continue;
        m_recent = index;
        return m_tracks[index].Get();
    }
    return nullptr;
}

void TrackList::Add(vl::Ref<vl::zr::Track> track) {
    track->m_list = this;
    track->GetAnimation()->m_tracks.push_back(track.Get());
    m_words->Add(vl::ToWord(track.Get()));
    m_tracks.push_back(std::move(track));
}

void TrackList::Remove(const AnimationModel* animation) {
    const auto found = std::find_if(m_tracks.begin(), m_tracks.end(),
                                    [&](const auto& track) { return track->GetAnimation() == animation; });
    if (found == m_tracks.end()) return;
    m_words->RemoveAt(static_cast<int>(found - m_tracks.begin()));
    m_tracks.erase(found);
    m_recent = 0;
}

vl::zr::Track* TrackList::Active() const {
    const AnimationModel* active = m_scene.GetActiveAnimation();
    return active != nullptr ? Find(active) : nullptr;
}

bool TrackList::HasKeys() const {
    return std::any_of(m_tracks.begin(), m_tracks.end(),
                       [](const auto& track) { return track->GetKeyCount() != 0; });
}

}  // namespace kernix
