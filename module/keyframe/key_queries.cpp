// SPDX-License-Identifier: MIT
// Queries about a record's keys, for exporters.
#include <algorithm>
#include <cmath>
#include <iterator>
#include <vector>

#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

vl::Array* KeysOf(ExportNode* record, int track) {
    switch (track) {
        case vl::zr::kKeyPosition:
            return record->pPosKeys;
        case vl::zr::kKeyRotation:
            return record->pRotKeys;
        case vl::zr::kKeyScale:
            return record->pScaleKeys;
        default:
            return nullptr;
    }
}

bool HasSeveral(vl::Array* track) {
    return track != nullptr && track->m_nCount > 1;
}

// The key, or null when there is none.
template <typename Key>
const Key* FindKey(vl::Array* track, int index) {
    return track != nullptr && track->IsValidIndex(index) ? vl::FromWord<Key*>(track->GetAt(index)) : nullptr;
}

template <typename Key>
void CollectTimes(vl::Array* track, std::vector<float>& times) {
    for (const Key* key : vl::ArrayOf<Key*>(track)) times.push_back(key->fTime);
}

}  // namespace

int ZR_TK::HasAnimation() {
    if (m_pScene == nullptr || m_pScene->IsAnimated() == 0) return 0;
    for (const ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        if (HasSeveral(record->pPosKeys) || HasSeveral(record->pScaleKeys) || HasSeveral(record->pRotKeys)) {
            return 1;
        }
    }
    return 0;
}

int ZR_TK::GetKeyCount(ExportNode* record, int track) {
    if (record == nullptr) return -1;
    if ((record->dwFlags & NF_GROUP) == 0 && (m_dwAnimFlags & vl::tk::kGroupKeysOnly) != 0) return 0;
    if (track < vl::zr::kKeyPosition || track > vl::zr::kKeyScale) return 0;
    vl::Array* keys = KeysOf(record, track);
    if (HasSeveral(keys)) return keys->m_nCount;
    return (m_dwAnimFlags & vl::tk::kAtLeastOneKey) != 0 ? 1 : 0;
}

int ZR_TK::GetRotationKey(ExportNode* record, int index, ExportRotationKey* out) {
    if (const auto* key = FindKey<ExportRotationKey>(record->pRotKeys, index)) {
        *out = *key;
    } else {
        *out = {};
        out->qValue = record->qRotation;
        if ((m_dwAnimFlags & vl::tk::kAngleAxisKeys) != 0) out->aaValue = vl::AngleAxis(record->qRotation);
    }
    return 1;
}

int ZR_TK::GetScaleKey(ExportNode* record, int index, ExportScaleKey* out) {
    if (const auto* key = FindKey<ExportScaleKey>(record->pScaleKeys, index)) {
        *out = *key;
    } else {
        *out = {};
        out->vValue = record->vScale;
    }
    return 1;
}

int ZR_TK::GetPositionKey(ExportNode* record, int index, ExportPositionKey* out) {
    if (const auto* key = FindKey<ExportPositionKey>(record->pPosKeys, index)) {
        *out = *key;
    } else {
        *out = {};
        out->vValue = record->vPosition;
    }
    return 1;
}

bool zrt::IsEarlier(float a, float b) {
    return a < b || (std::isnan(b) && !std::isnan(a));
}

std::vector<float> zrt::Union(const std::vector<float>& a, const std::vector<float>& b) {
    std::vector<float> both;
    std::set_union(a.begin(), a.end(), b.begin(), b.end(), std::back_inserter(both), IsEarlier);
    return both;
}

std::vector<float> zrt::KeyTimes(const ExportNode* record, bool withAncestors) {
    std::vector<float> times;
    for (; record != nullptr; record = withAncestors ? record->pParent : nullptr) {
        CollectTimes<ExportPositionKey>(record->pPosKeys, times);
        CollectTimes<ExportRotationKey>(record->pRotKeys, times);
        CollectTimes<ExportScaleKey>(record->pScaleKeys, times);
    }
    // Stable: of equal times, such as -0.0 and 0.0, the first one found is kept.
    std::stable_sort(times.begin(), times.end(), IsEarlier);
    times.erase(std::unique(times.begin(), times.end()), times.end());
    return times;
}

std::vector<float> zrt::KeyTimesFromZero(const ExportNode* record, bool withAncestors) {
    std::vector<float> times = KeyTimes(record, withAncestors);
    if (times.empty()) return times;
    const auto zero = std::lower_bound(times.begin(), times.end(), 0.0f);
    if (zero == times.end() || *zero != 0.0f) times.insert(zero, 0.0f);
    return times;
}

vl::Array* ZR_TK::GetKeyTimes(ExportNode* record, int withAncestors) try {
    vl::Ref<vl::Array> result = zrt::NewArray();
    for (const float time : zrt::KeyTimesFromZero(record, withAncestors != 0)) result->Add(vl::ToWord(time));
    return result.Detach();
} catch (...) {
    return nullptr;
}

void ZR_TK::AddKeyTime(vl::Array* times, float time) try {
    vl::ArrayOf<float> view(times);
    int low = 0;
    for (int high = view.Count(); low < high;) {
        const int middle = low + (high - low) / 2;
        if (view[middle] < time) {
            low = middle + 1;
        } else {
            high = middle;
        }
    }
    if (low == view.Count() || view[low] != time) view.InsertAt(low, time);
} catch (...) {
    // The list stays as it is.
}
