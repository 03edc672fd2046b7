// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "host/math.h"
#include "kernix/math/rotation.h"
#include "kernix/scene/curve.h"
#include "kernix/scene/key_column.h"
#include "kernix/scene/key_models.h"
#include "kernix/scene/track.h"

namespace kernix {

// The transform of a node without any key.
struct Pose {
    vl::Vector3<float> translation;
    vl::Quaternion rotation;
    vl::Vector3<float> scale{1, 1, 1};
};

// The keys of one animation of a node, in time order. The keys of each type are packed until one of them is
// requested as an object.
class KERNIX_API TransformTrack final : public vl::zr::Track {
public:
    using Track::Track;

    std::optional<std::pair<float, float>> GetRange() override;
    int GetKeyCount() override;
    void Save(vl::Stream& stream) override;
    bool Load(vl::Stream& stream) override;
    void Retime(float scale, float offset) override;

    // The keys of a type as one curve; null while they are objects. A rotation's values are quaternions.
    const StoredCurve* Packed(int keyType) const;
    void SetCurve(int keyType, StoredCurve curve);  // replaces all keys of the type
    StoredCurve TakeCurve(int keyType);             // leaves no key of the type, which must be packed
    // Restores the keys as they were before the first one was requested as an object, discarding changes made
    // to objects. Keys of a type of which keys were added or removed stay as they are.
    void ForgetObjects();
    // Frees packed keys that can be read again.
    void Unload();

    // Adds a key after those of the same or an earlier time. The track owns it.
    PositionKeyModel* AddPosition(float time);
    ScaleKeyModel* AddScale(float time);
    RotationKeyModel* AddRotation(float time);

    int Count(int keyType) const;
    float TimeOf(int keyType, int index) const;      // index must be valid
    vl::zr::Key* Get(int keyType, int index) const;  // null when index is out of range
    void Remove(int keyType, int index);             // does nothing when index is out of range
    void Clear(int keyType);

    // The pose at a time; parts without a key are those at rest. The pose is constant before the first and
    // after the last key.
    struct Sample {
        double translation[3];
        Rotation rotation;
        double scale[3];
    };
    Sample Evaluate(float time, const Pose& rest) const;

    void NormalizeRotations();
    void Changed() { m_orientations.clear(); }

    // The keys as objects.
    const std::vector<std::unique_ptr<PositionKeyModel>>& Positions() const;
    const std::vector<std::unique_ptr<RotationKeyModel>>& Rotations() const;
    const std::vector<std::unique_ptr<ScaleKeyModel>>& Scales() const;

private:
    template <typename Visit>
    auto WithColumn(int keyType, Visit visit) const;
    const std::vector<Rotation>& Orientations() const;
    Rotation EvaluateRotation(float time, const Pose& rest) const;

    // Mutable, as turning packed keys into objects does not change the keys.
    mutable KeyColumn<PositionKeyModel> m_positions;
    mutable KeyColumn<RotationKeyModel> m_rotations;
    mutable KeyColumn<ScaleKeyModel> m_scales;
    mutable std::vector<Rotation> m_orientations;  // of each rotation object; empty: to be computed
};

}  // namespace kernix
