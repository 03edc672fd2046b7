// SPDX-License-Identifier: MIT
#include "module/keyframe/key_merge.h"

#include <array>

#include "module/keyframe/key_track.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {

namespace {

std::array<float, 3> Components(const ExportPositionKey& key) {
    return {key.vValue.x, key.vValue.y, key.vValue.z};
}
std::array<float, 3> Components(const ExportScaleKey& key) {
    return {key.vValue.x, key.vValue.y, key.vValue.z};
}
std::array<float, 4> Components(const ExportRotationKey& key) {
    return {key.qValue.x, key.qValue.y, key.qValue.z, key.qValue.w};
}

// Whether b lies on the straight line from a to c.
template <typename Key>
bool IsRedundant(const Key& a, const Key& b, const Key& c) {
    const float span = c.fTime - a.fTime;
    if (span == 0) return true;
    const float s = (b.fTime - a.fTime) / span;
    const auto va = Components(a);
    const auto vb = Components(b);
    const auto vc = Components(c);
    for (std::size_t i = 0; i < va.size(); ++i) {
        const float difference = vc[i] - va[i];
        const float step = difference * s;
        if (vb[i] != va[i] + step) return false;
    }
    return true;
}

// Deleting a key changes only the triples that contained it, so the scan resumes one key back. All earlier
// keys were just found to be needed; a scan from the start would reach the same one next.
template <typename Key>
void DropRedundant(std::vector<Key*>& keys) {
    std::size_t kept = 0;
    for (Key* key : keys) {
        while (kept >= 2 && IsRedundant(*keys[kept - 2], *keys[kept - 1], *key)) delete keys[--kept];
        keys[kept++] = key;
    }
    if (kept == 2 && Components(*keys[0]) == Components(*keys[1])) delete keys[--kept];
    keys.resize(kept);
}

template <typename Key>
void MergeTrack(vl::Array* track, void (*merge)(std::vector<Key*>&)) {
    if (track == nullptr) return;
    std::vector<Key*> keys = ReadKeys<Key>(track);
    merge(keys);
    if (keys.size() != static_cast<std::size_t>(track->m_nCount)) WriteKeys(track, keys);
}

}  // namespace

void MergeKeys(std::vector<ExportPositionKey*>& keys) {
    DropRedundant(keys);
}
void MergeKeys(std::vector<ExportScaleKey*>& keys) {
    DropRedundant(keys);
}
void MergeQuaternionKeys(std::vector<ExportRotationKey*>& keys) {
    DropRedundant(keys);
}

void MergeAngleAxisKeys(std::vector<ExportRotationKey*>& keys) {
    std::size_t kept = 0;
    for (ExportRotationKey* key : keys) {
        if (kept > 0 && keys[kept - 1]->fTime < key->fTime && key->aaValue.angle == 0.0f) {
            delete key;
        } else {
            keys[kept++] = key;
        }
    }
    keys.resize(kept);
}

}  // namespace zrt

void ZR_TK::MergeKeys() {
    const bool steps = (m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        zrt::MergeTrack<ExportPositionKey>(record->pPosKeys, zrt::MergeKeys);
        zrt::MergeTrack<ExportScaleKey>(record->pScaleKeys, zrt::MergeKeys);
        zrt::MergeTrack<ExportRotationKey>(record->pRotKeys,
                                           steps ? zrt::MergeAngleAxisKeys : zrt::MergeQuaternionKeys);
    }
}
