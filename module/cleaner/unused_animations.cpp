// SPDX-License-Identifier: MIT
#include "host/anim_manager.h"
#include "host/animation.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Animation;

int CCleanerImpl::RemoveUnusedAnimations(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr || scene->m_pAnimations == nullptr) return 0;
    return zrt::Counted([&](int& count) {
        const auto extension = vl::Ref<vl::Extension>::Adopt(g_pHost->CreateExtension(kTypeAnimManager));
        auto* manager = dynamic_cast<zr_ANIM_MANAGER*>(extension.Get());
        if (manager == nullptr) return;

        const vl::Ref<vl::Array> list = zrt::NewList();
        vl::ArrayOf<Animation*> candidates(list.Get());
        for (Animation* animation : vl::ArrayOf<Animation*>(scene->m_pAnimations)) {
            if (zrt::IsBreak(context)) break;
            if (!manager->IsAnimationUsed(animation, nullptr, -1)) candidates.Add(animation);
        }
        for (Animation* animation : candidates) {
            if (zrt::IsBreak(context)) break;
            if (manager->RemoveAnimation(record, animation)) ++count;
        }
    });
}
