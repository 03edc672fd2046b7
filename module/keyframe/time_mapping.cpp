// SPDX-License-Identifier: MIT
// Maps key times to the exported range, which begins at 0: scales, fits to a length, reverses.
#include <utility>

#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

// Hosts before this version expect the steps of a reversed track about the opposite axes.
constexpr std::uint32_t kFirstVersionWithSignedSteps = 146;

vl::AngleAxis WithOppositeAxis(const vl::AngleAxis& rotation) {
    return {-rotation.x, -rotation.y, -rotation.z, rotation.angle};
}

template <typename Key>
void MapTimes(ZR_TK& tool, vl::Array* track) {
    for (Key* key : vl::ArrayOf<Key*>(track)) key->fTime = tool.MapTime(key->fTime);
}

template <typename Key>
void ReverseTrack(ZR_TK& tool, vl::Array* track) {
    if (track == nullptr) return;
    const int count = track->m_nCount;
    if (count == 1) vl::FromWord<Key*>(track->GetAt(0))->fTime = tool.GetStartTime();
    for (int i = 0; i < count / 2; ++i) track->Swap(i, count - 1 - i);
}

// Rewrites relative rotations, still in the old order, for the reversed one: the last key, which will be the
// first, gets all steps taken back one after another, and every other key the step of the key after it.
void ReverseSteps(vl::Array* track) {
    const vl::ArrayOf<ExportRotationKey*> keys(track);
    vl::Matrix4<double> total;
    for (int i = 0; i < keys.Count(); ++i) {
        const vl::AngleAxis back = WithOppositeAxis(keys[i]->aaValue);
        if (i == 0) {
            total.SetRotate(back);
        } else {
            total.Rotate(back);
        }
    }
    vl::AngleAxis carried;
    total.GetRotate(carried);
    for (int i = keys.Count() - 1; i >= 0; --i) {
        const vl::AngleAxis old = std::exchange(keys[i]->aaValue, carried);
        carried = g_nHostVersion < kFirstVersionWithSignedSteps ? WithOppositeAxis(old) : old;
    }
}

template <typename Key>
void MapVectorTrack(ZR_TK& tool, vl::Array* track, bool reverse) {
    MapTimes<Key>(tool, track);
    if (reverse) ReverseTrack<Key>(tool, track);
}

}  // namespace

void ZR_TK::MapTimeRange() {
    using namespace vl::tk;
    m_fStartTime = m_pScene->GetStartTime(nullptr);
    m_fEndTime = m_pScene->GetEndTime(nullptr);
    if ((m_dwAnimFlags & (kRescaleTime | kSetLength | kReverseTime)) != 0) RemapTime();
}

void ZR_TK::RemapTime() {
    const bool reverse = (m_dwAnimFlags & vl::tk::kReverseTime) != 0;
    float factor = m_fRescale;
    if ((m_dwAnimFlags & vl::tk::kSetLength) != 0) {
        const float length = m_fEndTime - m_fStartTime;
        factor = length != 0 ? m_fRescale / length : 0;
    }
    if (reverse) factor = -factor;
    m_fTimeScale = factor;
    m_fTimeOffset = -(factor * (reverse ? m_fEndTime : m_fStartTime));
    m_fStartTime = MapTime(m_fStartTime);
    m_fEndTime = MapTime(m_fEndTime);
    if (m_fStartTime > m_fEndTime) std::swap(m_fStartTime, m_fEndTime);
    ApplyTimeMapping();
}

void ZR_TK::ApplyTimeMapping() {
    const bool reverse = (m_dwAnimFlags & vl::tk::kReverseTime) != 0;
    const bool hasSteps = (m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        MapVectorTrack<ExportPositionKey>(*this, record->pPosKeys, reverse);
        MapVectorTrack<ExportScaleKey>(*this, record->pScaleKeys, reverse);
        MapTimes<ExportRotationKey>(*this, record->pRotKeys);
        if (!reverse) continue;
        if (hasSteps && record->pRotKeys != nullptr && record->pRotKeys->m_nCount > 1) {
            ReverseSteps(record->pRotKeys);
        }
        ReverseTrack<ExportRotationKey>(*this, record->pRotKeys);
    }
}
