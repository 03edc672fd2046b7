// SPDX-License-Identifier: MIT
#include <optional>
#include <utility>
#include <vector>

#include "host/animation.h"
#include "host/change_record.h"
#include "host/controller.h"
#include "host/host_app.h"
#include "host/material.h"
#include "host/node.h"
#include "host/ref.h"
#include "host/scene.h"
#include "host/stream.h"
#include "module/animmanager/anim_manager_impl.h"
#include "module/animmanager/merge_rotation_keys.h"
#include "module/animmanager/merge_vector_keys.h"
#include "module/frame/globals.h"

using vl::zr::Animation;
using vl::zr::Controller;
using vl::zr::Material;
using vl::zr::Node;
using vl::zr::Track;
using vl::zr::TransformController;

namespace {

constexpr int kStringMergeResult = 100;

TransformController* AsTransform(Controller* controller) {
    return controller->IsTypeOf(vl::zr::kTypeTransformController)
               ? static_cast<TransformController*>(controller)
               : nullptr;
}

}  // namespace

Animation* CAnimManagerImpl::MergeAnimations(ChangeRecord* record, vl::Array* animations, bool removeSources,
                                             std::uint32_t flags) try {
    // A copy: in the scene's own list the result would become a source, and be removed as one.
    const vl::ArrayOf<Animation*> given(animations);
    const std::vector<Animation*> sources(given.begin(), given.end());
    if (sources.size() < 2) return nullptr;
    const auto removed = vl::Ref<vl::Array>::AdoptNew(g_pHost->CreateArray());
    vl::ArrayOf<Animation*> list(removed.Get());
    for (Animation* source : sources) list.Add(source);

    m_dwKeyFlags = flags;
    m_pRecord = record;
    m_pScene = sources.front()->m_scene.Get();
    try {
        MergeTracks(sources);
    } catch (...) {
        UndoMerge();
    }
    Animation* const result = m_pResult;
    m_dwKeyFlags = 0;
    m_sources.clear();
    m_pResult = nullptr;
    m_pScene = nullptr;
    m_pRecord = nullptr;
    if (result != nullptr && removeSources) RemoveAnimations(record, removed.Get());
    return result;
} catch (...) {
    return nullptr;
}

void CAnimManagerImpl::MergeTracks(const std::vector<Animation*>& sources) {
    m_pResult = m_pScene->CreateAnimation(g_pHost->GetModuleString(g_hStrings, kStringMergeResult));
    if (m_pResult == nullptr) return;
    if (m_pRecord != nullptr) m_pRecord->RecordAnimationCreation(m_pScene, m_pResult, 0);
    CollectSources(sources);
    for (Node* node : vl::ArrayOf<Node*>(m_pScene->m_pNodes)) {
        if (node != nullptr) MergeObjectTracks(node, node->m_pControllers);
    }
    for (Material* material : vl::ArrayOf<Material*>(m_pScene->m_pMaterials)) {
        if (material != nullptr) MergeObjectTracks(material, material->m_pControllers);
    }
}

// Removes the half-made result from the scene, recording it if memory allows.
void CAnimManagerImpl::UndoMerge() {
    vl::zr::Scene* const scene = m_pScene;
    Animation* const result = std::exchange(m_pResult, nullptr);
    if (result == nullptr || RemoveAnimation(m_pRecord, result)) return;
    scene->DeleteAnimation(result);
}

void CAnimManagerImpl::CollectSources(const std::vector<Animation*>& animations) {
    m_sources.resize(animations.size());
    for (std::size_t i = 0; i < animations.size(); ++i) {
        m_sources[i].pAnimation = animations[i];
        m_sources[i].dStart = m_pScene->GetStartTime(animations[i]);
        m_sources[i].dSecond = m_pScene->GetAnimationTime(animations[i]);
    }
}

void CAnimManagerImpl::MergeObjectTracks(vl::Interface* object, vl::Array* controllers) {
    for (Controller* controller : vl::ArrayOf<Controller*>(controllers)) {
        if (!vl::ArrayOf<Track*>(controller->m_pTracks).IsEmpty()) MergeControllerTracks(object, controller);
    }
}

void CAnimManagerImpl::MergeControllerTracks(vl::Interface* object, Controller* controller) {
    TransformController* const transform = AsTransform(controller);
    Track* destination = nullptr;
    std::optional<zrt::RotationMerge> rotations;  // all later sources at once: one pass over the keys
    for (const AnimSource& source : m_sources) {
        Track* track = controller->GetTrack(source.pAnimation);
        if (track == nullptr) continue;
        if (destination == nullptr) {
            destination = controller->AddTrack(m_pResult);
            CopyFirstTrack(object, controller, track, destination, source.dOffset);
            continue;
        }
        if (transform == nullptr) return;
        if (!rotations) rotations.emplace(transform, destination);
        MergeTransformKeys(transform, track, destination, source.dOffset, *rotations);
    }
    if (rotations) rotations->Finish();
}

void CAnimManagerImpl::MergeTransformKeys(TransformController* controller, Track* source, Track* destination,
                                          double offset, zrt::RotationMerge& rotations) {
    if ((m_dwKeyFlags & ANIM_MERGE_POSITION) != 0) {
        zrt::MergeVectorKeys(controller, source, destination, offset, vl::zr::kKeyPosition);
    }
    if ((m_dwKeyFlags & ANIM_MERGE_SCALE) != 0) {
        zrt::MergeVectorKeys(controller, source, destination, offset, vl::zr::kKeyScale);
    }
    if ((m_dwKeyFlags & ANIM_MERGE_ROTATION) != 0) rotations.MergeRotationKeys(source, offset);
}

void CAnimManagerImpl::CopyFirstTrack(vl::Interface* object, Controller* controller, Track* source,
                                      Track* destination, double offset) {
    const auto instance =
        vl::Ref<vl::Interface>::Adopt(g_pHost->CreateInstance(0, 0, vl::zr::kClassTransferStream));
    if (!instance) return;
    auto* stream = static_cast<vl::Stream*>(instance.Get());
    controller->SaveTrack(stream, source, 0);
    stream->Seek(0, 0);
    if (m_pRecord != nullptr) {
        m_pRecord->RecordTrackCreation(object, controller->GetTrackObject(destination, 0));
    }
    controller->LoadTrack(stream, 0, destination);
    if (offset > 0) controller->RetimeTrack(1.0F, static_cast<float>(offset), destination);
    if (TransformController* transform = AsTransform(controller)) StripUnselectedKeys(transform, destination);
}

void CAnimManagerImpl::StripUnselectedKeys(TransformController* controller, Track* track) {
    for (const AnimMergeKind& kind : kAnimMergeKinds) {
        if ((m_dwKeyFlags & kind.flag) != 0) continue;
        for (int i = controller->GetTrackKeyCount(kind.keyType, track) - 1; i >= 0; --i) {
            controller->RemoveKey(kind.keyType, i, track);
        }
    }
}
