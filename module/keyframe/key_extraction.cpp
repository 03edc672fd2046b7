// SPDX-License-Identifier: MIT
// Copies the keys of the host's controllers into the tracks of the records.
#include <algorithm>

#include "host/controller.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"
#include "module/keyframe/rotation_keys.h"

namespace {

using vl::zr::TransformController;

template <typename Key>
void CopyTimeAndParams(const vl::zr::Key& from, Key& to) {
    to.fTime = from.m_fTime;
    std::copy(std::begin(from.m_params), std::end(from.m_params), to.fParams);
}

// HostKey: a host's key with a vector value, like Key.
template <typename HostKey, typename Key>
void ExtractVectorTrack(TransformController* controller, int track, int count, vl::Array*& out) {
    zrt::DestroyTrack<Key>(out);
    for (int i = 0; i < count; ++i) {
        auto* hostKey = static_cast<HostKey*>(controller->GetKey(track, i, nullptr));
        auto* key = zrt::AddKey<Key>(out);
        hostKey->GetValue(&key->vValue);
        CopyTimeAndParams(*hostKey, *key);
    }
}

// The form of the first key applies to all; returns it.
int ReadRotationKeys(TransformController* controller, int count, zrt::RotationKeys& keys) {
    int form = vl::zr::kRotationQuaternion;
    keys.resize(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        auto* hostKey =
            static_cast<vl::zr::RotationKey*>(controller->GetKey(vl::zr::kKeyRotation, i, nullptr));
        ExportRotationKey& key = keys[static_cast<std::size_t>(i)];
        CopyTimeAndParams(*hostKey, key);
        if (i == 0) form = hostKey->GetRotationType();
        if (form == vl::zr::kRotationAngleAxis) {
            hostKey->GetValue(&key.aaValue);
        } else if (form == vl::zr::kRotationQuaternion) {
            hostKey->GetQuaternion(&key.qValue);
        } else if (form == vl::zr::kRotationEuler) {
            int order = 0;
            hostKey->GetEuler(&key.vEuler, &order);
            key.dwOrder = static_cast<std::uint32_t>(order);
        }
    }
    return form;
}

void ExtractRotationTrack(TransformController* controller, int count, bool wantsSteps, vl::Array*& out) {
    zrt::RotationKeys keys;
    const int form = ReadRotationKeys(controller, count, keys);
    if (form == vl::zr::kRotationEuler) {
        keys = zrt::OrientationsFromEuler(keys);
        if (wantsSteps) zrt::AddSteps(keys);
    } else if (form == vl::zr::kRotationAngleAxis && !wantsSteps) {
        keys = zrt::OrientationsFromSteps(keys);
    } else if (form == vl::zr::kRotationQuaternion && wantsSteps) {
        zrt::AddSteps(keys);
    }
    zrt::DestroyTrack<ExportRotationKey>(out);
    for (const ExportRotationKey& key : keys) *zrt::AddKey<ExportRotationKey>(out) = key;
}

}  // namespace

int ZR_TK::RunExtractKeys() {
    if (m_pScene == nullptr || m_pScene->IsAnimated() == 0) return 0;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        if (MayHaveKeys(*record)) ExtractRecordKeys(record);
    }
    FoldSceneMatrix();
    return 1;
}

void ZR_TK::ExtractRecordKeys(ExportNode* record) {
    TransformController* controller = record->pController;
    if (controller == nullptr) return;
    const int positions = controller->GetTrackKeyCount(vl::zr::kKeyPosition, nullptr);
    const int rotations = controller->GetTrackKeyCount(vl::zr::kKeyRotation, nullptr);
    const int scales = controller->GetTrackKeyCount(vl::zr::kKeyScale, nullptr);
    if (scales <= 1 && positions < 1 && rotations <= 1) return;

    ExtractVectorTrack<vl::zr::ScaleKey, ExportScaleKey>(controller, vl::zr::kKeyScale, scales,
                                                         record->pScaleKeys);
    ExtractRotationTrack(controller, rotations, (m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0,
                         record->pRotKeys);
    ExtractVectorTrack<vl::zr::PositionKey, ExportPositionKey>(controller, vl::zr::kKeyPosition, positions,
                                                               record->pPosKeys);
}
