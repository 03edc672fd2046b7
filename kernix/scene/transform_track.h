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

// Where a node stands without any key.
struct Pose {
    vl::Vector3<float> translation;
    vl::Quaternion rotation;
    vl::Vector3<float> scale{1, 1, 1};
};

// The keys of one animation of a node, in time order. They lie side by side, for each type, until somebody
// asks for a key as an object.
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
    void SetCurve(int keyType, StoredCurve curve);  // in the place of all keys of the type
    StoredCurve TakeCurve(int keyType);             // leaves no key of the type; of a packed one
    // The keys are again what they were before the first one was asked for, with the changes made to objects
    // alone lost. Where keys were added or taken away they stay as they are.
    void ForgetObjects();
    // Frees what can be read again.
    void Unload();

    // Behind the keys of the same or an earlier time. The track owns the key.
    PositionKeyModel* AddPosition(float time);
    ScaleKeyModel* AddScale(float time);
    RotationKeyModel* AddRotation(float time);

    int Count(int keyType) const;
    float TimeOf(int keyType, int index) const;      // of a key there is
    vl::zr::Key* Get(int keyType, int index) const;  // null outside
    void Remove(int keyType, int index);             // nothing outside
    void Clear(int keyType);

    // The pose at a time; parts without a key are those of rest. Before the first and after the last key
    // the pose stays.
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

    // Objects are made of the same keys, whoever asks.
    mutable KeyColumn<PositionKeyModel> m_positions;
    mutable KeyColumn<RotationKeyModel> m_rotations;
    mutable KeyColumn<ScaleKeyModel> m_scales;
    mutable std::vector<Rotation> m_orientations;  // of each rotation object; empty when to be made anew
};

}  // namespace kernix
