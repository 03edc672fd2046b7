// SPDX-License-Identifier: MIT
#include "kernix/scene/track_stream.h"
#include "kernix/scene/transform_track.h"

namespace kernix {
namespace {

constexpr std::uint32_t kTransformTrackMark = 0x324D5254;  // "TRM2"

void SaveKey(vl::Stream& stream, const vl::zr::Key& key, const Tangents* tangents) {
    WriteValue(stream, key.m_fTime);
    WriteValue(stream, key.m_params);
    WriteValue(stream, tangents != nullptr);
    if (tangents != nullptr) WriteValue(stream, *tangents);
}

bool LoadKey(vl::Stream& stream, vl::zr::Key& key, std::unique_ptr<Tangents>& tangents) {
    bool hasTangents = false;
    if (!ReadValue(stream, key.m_params) || !ReadValue(stream, hasTangents)) return false;
    if (!hasTangents) return true;
    tangents = std::make_unique<Tangents>();
    return ReadValue(stream, *tangents);
}

// Reads as many keys as the count says, or stops where the content ends.
template <typename ReadKey>
bool LoadKeys(vl::Stream& stream, const ReadKey& readKey) {
    std::uint32_t count = 0;
    if (!ReadValue(stream, count)) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        float time = 0;
        if (!ReadValue(stream, time) || !readKey(time)) return false;
    }
    return true;
}

}  // namespace

void TransformTrack::Save(vl::Stream& stream) {
    WriteValue(stream, kTransformTrackMark);
    const auto saveVectors = [&](const auto& keys) {
        WriteValue(stream, static_cast<std::uint32_t>(keys.size()));
        for (const auto& key : keys) {
            SaveKey(stream, *key, key->m_tangents.get());
            WriteValue(stream, key->m_value);
        }
    };
    for (const int keyType : kKeyTypes) {
        const StoredCurve* packed = Packed(keyType);
        WriteValue(stream, packed != nullptr);
        if (packed != nullptr) {
            SaveCurve(stream, packed->Get());
        } else if (keyType == vl::zr::kKeyPosition) {
            saveVectors(Positions());
        } else if (keyType == vl::zr::kKeyScale) {
            saveVectors(Scales());
        } else {
            WriteValue(stream, static_cast<std::uint32_t>(Rotations().size()));
            for (const auto& key : Rotations()) {
                SaveKey(stream, *key, key->m_tangents.get());
                WriteValue(stream, key->m_type);
                WriteValue(stream, key->m_order);
                WriteValue(stream, key->m_quaternion);
                WriteValue(stream, key->m_angleAxis);
                WriteValue(stream, key->m_euler);
            }
        }
    }
}

bool TransformTrack::Load(vl::Stream& stream) {
    const auto clear = [this] {
        for (const int keyType : kKeyTypes) Clear(keyType);
    };
    clear();
    std::uint32_t mark = 0;
    const auto loadVector = [&](auto* key) {
        return LoadKey(stream, *key, key->m_tangents) && ReadValue(stream, key->m_value);
    };
    const auto loadRotation = [&](float time) {
        RotationKeyModel* key = AddRotation(time);
        return LoadKey(stream, *key, key->m_tangents) && ReadValue(stream, key->m_type) &&
               ReadValue(stream, key->m_order) && ReadValue(stream, key->m_quaternion) &&
               ReadValue(stream, key->m_angleAxis) && ReadValue(stream, key->m_euler);
    };
    const auto loadObjects = [&](int keyType) {
        if (keyType == vl::zr::kKeyPosition)
            return LoadKeys(stream, [&](float time) { return loadVector(AddPosition(time)); });
        if (keyType == vl::zr::kKeyScale)
            return LoadKeys(stream, [&](float time) { return loadVector(AddScale(time)); });
        return LoadKeys(stream, loadRotation);
    };
    bool isTrack = ReadValue(stream, mark) && mark == kTransformTrackMark;
    for (const int keyType : kKeyTypes) {
        bool isPacked = false;
        Curve curve;
        isTrack = isTrack && ReadValue(stream, isPacked) &&
                  (isPacked ? LoadCurve(stream, curve) : loadObjects(keyType));
        if (isTrack && isPacked) SetCurve(keyType, StoredCurve(std::move(curve)));
    }
    if (!isTrack) clear();
    return isTrack;
}

}  // namespace kernix
