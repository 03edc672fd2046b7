// SPDX-License-Identifier: MIT
#include "kernix/scene/track_list.h"

#include <algorithm>

#include "kernix/array.h"
#include "kernix/scene/animation_model.h"
#include "kernix/scene/scene_model.h"

namespace kernix {
namespace {

template <typename T>
void MakeRoom(std::vector<T>& list) {
    if (list.size() == list.capacity()) list.reserve(2 * list.size() + 1);
}

}  // namespace

TrackList::TrackList(SceneModel& scene)
    : m_scene(scene), m_words(vl::Ref<vl::Array>::AdoptNew(CreateArray())) {}

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

// Everything that can fail comes before the first change.
void TrackList::Add(vl::Ref<vl::zr::Track> track) {
    std::vector<vl::zr::Track*>& ofAnimation = track->GetAnimation()->m_tracks;
    MakeRoom(ofAnimation);
    MakeRoom(m_tracks);
    m_words->Add(vl::ToWord(track.Get()));
    track->m_list = this;
    ofAnimation.push_back(track.Get());
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
