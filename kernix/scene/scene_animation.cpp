// SPDX-License-Identifier: MIT
#include <algorithm>

#include "kernix/scene/scene_model.h"
#include "kernix/utf.h"

namespace kernix {

void SceneModel::SetCurrentTime(float time, int) {
    m_currentTime = time;
    ++m_timeState;
    if (m_followsLightTargets) UpdateLightTargets();
}

void SceneModel::FollowLightTargets(bool follow) {
    if (follow && !m_followsLightTargets) UpdateLightTargets();
    m_followsLightTargets = follow;
}

void SceneModel::UpdateLightTargets() {
    for (LightModel* light : m_watchedLights) light->UpdateTargetPosition();
}

std::pair<float, float> SceneModel::GetRange(const vl::zr::Animation* animation) const {
    std::optional<std::pair<float, float>> range;
    const auto widen = [&](const AnimationModel& one) {
        for (vl::zr::Track* track : one.Tracks()) {
            const auto keys = track->GetRange();
            if (!keys) continue;
            range =
                range ? std::pair(std::min(range->first, keys->first), std::max(range->second, keys->second))
                      : *keys;
        }
    };
    if (animation == nullptr) animation = m_activeAnimation;
    if (animation != nullptr) {
        widen(static_cast<const AnimationModel&>(*animation));
    } else {
        for (auto* each : vl::ArrayOf<vl::zr::Animation*>(m_pAnimations))
            widen(static_cast<AnimationModel&>(*each));
    }
    return range.value_or(std::pair(0.0f, 0.0f));
}

double SceneModel::GetAnimationTime(vl::zr::Animation* animation) {
    return double{GetRange(animation).second};
}
float SceneModel::GetStartTime(vl::zr::Animation* animation) {
    return GetRange(animation).first;
}
float SceneModel::GetEndTime(vl::zr::Animation* animation) {
    return GetRange(animation).second;
}

int SceneModel::IsAnimated() {
    for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(m_pAnimations)) {
        for (vl::zr::Track* track : static_cast<AnimationModel*>(animation)->Tracks()) {
            if (track->GetKeyCount() != 0) return 1;
        }
    }
    return 0;
}

vl::zr::Animation* SceneModel::CreateAnimation(const char16_t* name) try {
    return AddAnimation(name != nullptr ? name : u"");
} catch (...) {
    return nullptr;
}

bool SceneModel::DeleteAnimation(vl::zr::Animation* animation) {
    const int index = m_pAnimations->IndexOf(vl::ToWord(animation));
    if (index < 0) return false;
    m_pAnimations->RemoveAt(index);
    for (const auto& viewport : m_viewports) viewport->RemoveAnimation(animation);
    static_cast<AnimationModel*>(animation)->DropTracks();
    if (m_activeAnimation == animation) {
        m_activeAnimation =
            m_pAnimations->m_nCount != 0
                ? static_cast<AnimationModel*>(vl::ArrayOf<vl::zr::Animation*>(m_pAnimations)[0])
                : nullptr;
    }
    TransformsChanged();
    return true;
}

bool SceneModel::CanRemoveAnimation(vl::zr::Animation* animation) {
    return !static_cast<AnimationModel*>(animation)->m_locked;
}

void SceneModel::ForEachAnimationItem(vl::zr::Animation* animation, vl::zr::AnimationItemCallback callback,
                                      void* context) {
    // A copy: the callback may change what the animation holds.
    const std::vector<vl::zr::Track*> tracks = static_cast<AnimationModel*>(animation)->Tracks();
    for (vl::zr::Track* track : tracks) {
        if (!callback(0, 0, track, context)) return;
    }
}

void AnimationModel::GetNameW(char16_t* buffer, int size) {
    CopyText(m_name, buffer, size);
}

void AnimationModel::DropTracks() {
    const std::vector<vl::zr::Track*> tracks = std::move(m_tracks);
    m_tracks.clear();
    for (vl::zr::Track* track : tracks) track->GetList()->Remove(this);
}

}  // namespace kernix
