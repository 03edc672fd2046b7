// SPDX-License-Identifier: MIT
#include "module/keyframe/key_resample.h"

#include <algorithm>
#include <limits>

#include "host/ref.h"
#include "module/frame/globals.h"
#include "module/keyframe/key_track.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {

namespace {

const vl::Vector3<float>& Value(const ExportPositionKey& key) {
    return key.vValue;
}
const vl::Vector3<float>& Value(const ExportScaleKey& key) {
    return key.vValue;
}
const vl::Quaternion& Value(const ExportRotationKey& key) {
    return key.qValue;
}
void SetValue(ExportPositionKey& key, const vl::Vector3<float>& value) {
    key.vValue = value;
}
void SetValue(ExportScaleKey& key, const vl::Vector3<float>& value) {
    key.vValue = value;
}
void SetValue(ExportRotationKey& key, const vl::Quaternion& value) {
    key.qValue = value;
}

vl::Vector3<float> Interpolate(float s, const vl::Vector3<float>& a, const vl::Vector3<float>& b) {
    return {a.x + (b.x - a.x) * s, a.y + (b.y - a.y) * s, a.z + (b.z - a.z) * s};
}
vl::Quaternion Interpolate(float s, const vl::Quaternion& a, const vl::Quaternion& b) {
    return vl::Quaternion(s, a, b, 0);
}

// A new key at time t between its neighbours; null where there is none.
template <typename Key, typename ValueType>
Key* NewKey(float t, const Key* previous, const Key* next, const ValueType& rest) {
    auto* key = new Key();
    key->fTime = t;
    if (previous != nullptr && next != nullptr) {
        const float s = (t - previous->fTime) / (next->fTime - previous->fTime);
        SetValue(*key, Interpolate(s, Value(*previous), Value(*next)));
    } else if (previous != nullptr || next != nullptr) {
        SetValue(*key, Value(previous != nullptr ? *previous : *next));
    } else {
        SetValue(*key, rest);
    }
    return key;
}

// Whether keys and times ascend, the times without repeats. What is no number never does.
template <typename Key>
bool Ascend(const std::vector<float>& times, const std::vector<Key*>& keys) {
    float last = -std::numeric_limits<float>::infinity();
    for (const Key* key : keys) {
        if (!(key->fTime >= last)) return false;
        last = key->fTime;
    }
    last = -std::numeric_limits<float>::infinity();
    for (const float t : times) {
        if (!(t > last)) return false;
        last = t;
    }
    return true;
}

// One walk along both lists. A new key's left neighbour may itself be new, as in the walk for each time.
template <typename Key, typename ValueType>
void ResampleAscending(const std::vector<float>& times, std::vector<Key*>& keys, const ValueType& rest) {
    std::vector<Key*> out;
    out.reserve(keys.size() + times.size());
    auto next = keys.begin();
    for (const float t : times) {
        while (next != keys.end() && (*next)->fTime < t) out.push_back(*next++);
        if (next != keys.end() && (*next)->fTime == t) continue;
        out.push_back(
            NewKey(t, out.empty() ? nullptr : out.back(), next != keys.end() ? *next : nullptr, rest));
    }
    out.insert(out.end(), next, keys.end());
    keys = std::move(out);
}

template <typename Key, typename ValueType>
void Resample(const std::vector<float>& times, std::vector<Key*>& keys, const ValueType& rest) {
    if (Ascend(times, keys)) {
        ResampleAscending(times, keys, rest);
        return;
    }
    for (const float t : times) {
        const auto next =
            std::find_if(keys.begin(), keys.end(), [t](const Key* key) { return key->fTime >= t; });
        if (next != keys.end() && (*next)->fTime == t) continue;
        const Key* previous = next != keys.begin() ? *(next - 1) : nullptr;
        keys.insert(next, NewKey(t, previous, next != keys.end() ? *next : nullptr, rest));
    }
}

template <typename Key, typename ValueType>
void ResampleTrack(const std::vector<float>& times, vl::Array* track, const ValueType& rest) {
    std::vector<Key*> keys = ReadKeys<Key>(track);
    ResampleKeys(times, keys, rest);
    if (keys.size() != static_cast<std::size_t>(track->m_nCount)) WriteKeys(track, keys);
}

vl::Array* MadeTrack(vl::Array*& track) {
    if (track == nullptr) track = g_pHost->CreateArray();
    return track;
}

bool HasSeveral(const vl::Array* track) {
    return track != nullptr && track->m_nCount > 1;
}

}  // namespace

void ResampleKeys(const std::vector<float>& times, std::vector<ExportPositionKey*>& keys,
                  const vl::Vector3<float>& rest) {
    Resample(times, keys, rest);
}
void ResampleKeys(const std::vector<float>& times, std::vector<ExportScaleKey*>& keys,
                  const vl::Vector3<float>& rest) {
    Resample(times, keys, rest);
}
void ResampleKeys(const std::vector<float>& times, std::vector<ExportRotationKey*>& keys,
                  const vl::Quaternion& rest) {
    Resample(times, keys, rest);
}

void ResamplePositions(const std::vector<float>& times, vl::Array* track, const vl::Vector3<float>& rest) {
    ResampleTrack<ExportPositionKey>(times, track, rest);
}

void ResampleRecord(const std::vector<float>& times, ExportNode& record) {
    ResampleTrack<ExportPositionKey>(times, MadeTrack(record.pPosKeys), record.vPosition);
    ResampleTrack<ExportScaleKey>(times, MadeTrack(record.pScaleKeys), record.vScale);
    ResampleTrack<ExportRotationKey>(times, MadeTrack(record.pRotKeys), record.qRotation);
}

}  // namespace zrt

void ZR_TK::ResampleKeys() {
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        if (!zrt::HasSeveral(record->pPosKeys) && !zrt::HasSeveral(record->pScaleKeys) &&
            !zrt::HasSeveral(record->pRotKeys)) {
            continue;
        }
        const auto times = vl::Ref<vl::Array>::Adopt(GetKeyTimes(record, 0));
        zrt::ResampleRecord(zrt::ReadTimes(times.Get()), *record);
    }
}
