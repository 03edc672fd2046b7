// SPDX-License-Identifier: MIT
#include "module/animmanager/anim_manager_impl.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "host/animation.h"
#include "host/change_record.h"
#include "host/interface_array.h"
#include "host/ref.h"
#include "host/scene.h"
#include "host/viewport.h"

using vl::zr::Animation;
using vl::zr::AnimationReference;
using vl::zr::Scene;
using vl::zr::Viewport;

namespace {

constexpr int kViewportNameSize = 260;

Viewport* ViewportAt(vl::InterfaceArray* viewports, unsigned index) {
    return static_cast<Viewport*>(viewports->GetAt(index));
}

void RemoveReferences(Viewport* viewport, const Animation* animation) {
    const auto count = [viewport] {
        return vl::ArrayOf<AnimationReference*>(viewport->m_pAnimationReferences).Count();
    };
    for (int i = 0; i < count();) {
        auto* entry = vl::ArrayOf<AnimationReference*>(viewport->m_pAnimationReferences)[i];
        const int before = count();
        if (entry->pAnimation == animation) viewport->RemoveAnimationReference(entry);
        if (count() >= before) ++i;  // a host may keep the entry
    }
}

bool RecordItemCallback(vl::Word, vl::Word, vl::Interface* item, void* context) {
    auto* record = static_cast<ChangeRecord*>(context);
    if (record != nullptr) record->RecordAnimationItemRemoval(item, 0);
    return true;
}

}  // namespace

bool CAnimManagerImpl::IsAnimationUsed(Animation* animation, char16_t* names, int maxLen) try {
    const auto viewports = vl::Ref<vl::InterfaceArray>::Adopt(animation->m_scene.Get()->GetAllViewports());
    std::u16string text;
    bool used = false;
    for (unsigned i = 0; i < viewports->GetCount(); ++i) {
        Viewport* viewport = ViewportAt(viewports.Get(), i);
        if (viewport->m_nKind != vl::zr::kViewportView) continue;
        for (const auto* entry : vl::ArrayOf<AnimationReference*>(viewport->m_pAnimationReferences)) {
            if (entry->pAnimation != animation) continue;
            used = true;
            if (names == nullptr) return true;
            char16_t name[kViewportNameSize] = {};
            viewport->m_strName.Get(name, kViewportNameSize);
            text.append(name).push_back(u'\n');
        }
    }
    if (used && maxLen > 0) {
        const auto size = static_cast<std::size_t>(maxLen);
        std::fill(names + text.copy(names, size), names + size, u'\0');
    }
    return used;
} catch (...) {
    return true;
}

bool CAnimManagerImpl::RemoveAnimation(ChangeRecord* record, Animation* animation) try {
    if (animation == nullptr) return false;
    m_pScene = animation->m_scene.Get();
    if (m_pScene == nullptr || !m_pScene->CanRemoveAnimation(animation)) {
        m_pScene = nullptr;
        return false;
    }
    m_pScene->ForEachAnimationItem(animation, RecordItemCallback, record);
    const auto viewports = vl::Ref<vl::InterfaceArray>::Adopt(m_pScene->GetAllViewports());
    for (unsigned i = 0; i < viewports->GetCount(); ++i) {
        RemoveReferences(ViewportAt(viewports.Get(), i), animation);
    }
    if (record != nullptr) record->RecordAnimationRemoval(m_pScene, animation, 0);
    const bool removed = m_pScene->DeleteAnimation(animation);
    m_pScene->Notify(vl::zr::kNotifyRemoved, 1, 2);
    m_pScene = nullptr;
    return removed;
} catch (...) {
    m_pScene = nullptr;
    return false;
}

bool CAnimManagerImpl::RemoveAnimations(ChangeRecord* record, vl::Array* animations) try {
    // The scene's own list shrinks with every removal, and an animation may be freed with its last reference.
    std::vector<vl::Ref<Animation>> targets;
    for (Animation* animation : vl::ArrayOf<Animation*>(animations)) {
        targets.push_back(vl::Ref<Animation>::Share(animation));
    }
    bool removed = false;
    for (const auto& target : targets) {
        if (RemoveAnimation(record, target.Get())) removed = true;
    }
    return removed;
} catch (...) {
    return false;
}
