// SPDX-License-Identifier: MIT
#include "module/keyframe/key_resample.h"

#include <algorithm>
#include <limits>
#include <memory>

#include "module/keyframe/key_track.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

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

template <typename Key, typename ValueType>
Key Between(float t, const Key* previous, const Key* next, const ValueType& rest) {
    Key key;
    key.fTime = t;
    if (previous != nullptr && next != nullptr) {
        const float s = (t - previous->fTime) / (next->fTime - previous->fTime);
        SetValue(key, Interpolate(s, Value(*previous), Value(*next)));
    } else if (previous != nullptr || next != nullptr) {
        SetValue(key, Value(previous != nullptr ? *previous : *next));
    } else {
        SetValue(key, rest);
    }
    return key;
}

// Owns new keys until the track does.
template <typename Key>
class NewKeys {
public:
    explicit NewKeys(std::size_t most) { m_keys.reserve(most); }

    // A key at time t between its neighbours; null where there is none.
    template <typename ValueType>
    Key* Add(float t, const Key* previous, const Key* next, const ValueType& rest) {
        m_keys.push_back(std::make_unique<Key>(Between(t, previous, next, rest)));
        return m_keys.back().get();
    }
    void HandOver() {
        for (std::unique_ptr<Key>& key : m_keys) static_cast<void>(key.release());
    }

private:
    std::vector<std::unique_ptr<Key>> m_keys;
};

// Whether keys and times ascend, the times without repeats. NaN counts as not ascending.
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

// One pass over both lists. A new key's left neighbour may itself be new, as in Resample.
template <typename Key, typename ValueType>
void ResampleAscending(const std::vector<float>& times, std::vector<Key*>& keys, const ValueType& rest) {
    NewKeys<Key> added(times.size());
    std::vector<Key*> out;
    out.reserve(keys.size() + times.size());
    auto next = keys.begin();
    for (const float t : times) {
        while (next != keys.end() && (*next)->fTime < t) out.push_back(*next++);
        if (next != keys.end() && (*next)->fTime == t) continue;
        out.push_back(
            added.Add(t, out.empty() ? nullptr : out.back(), next != keys.end() ? *next : nullptr, rest));
    }
    out.insert(out.end(), next, keys.end());
    keys = std::move(out);
    added.HandOver();
}

template <typename Key, typename ValueType>
void Resample(const std::vector<float>& times, std::vector<Key*>& keys, const ValueType& rest) {
    if (Ascend(times, keys)) {
        ResampleAscending(times, keys, rest);
        return;
    }
    NewKeys<Key> added(times.size());
    for (const float t : times) {
        const auto next =
            std::find_if(keys.begin(), keys.end(), [t](const Key* key) { return key->fTime >= t; });
        if (next != keys.end() && (*next)->fTime == t) continue;
        const Key* previous = next != keys.begin() ? *(next - 1) : nullptr;
        keys.insert(next, added.Add(t, previous, next != keys.end() ? *next : nullptr, rest));
    }
    added.HandOver();
}

template <typename Key, typename ValueType>
void ResampleTrack(const std::vector<float>& times, vl::Array* track, const ValueType& rest) {
    std::vector<Key*> keys = ReadKeys<Key>(track);
    MakeRoom(track, keys.size() + times.size());
    ResampleKeys(times, keys, rest);
    WriteKeys(track, keys);
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
    ResampleTrack<ExportPositionKey>(times, Made(record.pPosKeys), record.vPosition);
    ResampleTrack<ExportScaleKey>(times, Made(record.pScaleKeys), record.vScale);
    ResampleTrack<ExportRotationKey>(times, Made(record.pRotKeys), record.qRotation);
}

}  // namespace zrt

void ZR_TK::ResampleKeys() {
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        if (!zrt::HasSeveral(record->pPosKeys) && !zrt::HasSeveral(record->pScaleKeys) &&
            !zrt::HasSeveral(record->pRotKeys)) {
            continue;
        }
        zrt::ResampleRecord(zrt::KeyTimesFromZero(record, false), *record);
    }
}
