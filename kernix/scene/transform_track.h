// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "host/math.h"
#include "kernix/math/rotation.h"
#include "kernix/scene/key_models.h"
#include "kernix/scene/track.h"

namespace kernix {

// Where a node stands without any key.
struct Pose {
    vl::Vector3<float> translation;
    vl::Quaternion rotation;
    vl::Vector3<float> scale{1, 1, 1};
};

// The keys of one animation of a node, in time order.
class KERNIX_API TransformTrack final : public vl::zr::Track {
public:
    using Track::Track;

    std::optional<std::pair<float, float>> GetRange() override;
    int GetKeyCount() override;
    void Save(vl::Stream& stream) override;
    bool Load(vl::Stream& stream) override;
    void Retime(float scale, float offset) override;

    // Behind the keys of the same or an earlier time. The track owns the key.
    PositionKeyModel* AddPosition(float time);
    ScaleKeyModel* AddScale(float time);
    RotationKeyModel* AddRotation(float time);
    void Reserve(int keyType, std::size_t count);  // room for further keys

    int Count(int keyType) const;
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

    const std::vector<std::unique_ptr<PositionKeyModel>>& Positions() const { return m_positions; }
    const std::vector<std::unique_ptr<RotationKeyModel>>& Rotations() const { return m_rotations; }
    const std::vector<std::unique_ptr<ScaleKeyModel>>& Scales() const { return m_scales; }

private:
    const std::vector<Rotation>& Orientations() const;
    Rotation EvaluateRotation(float time, const Pose& rest) const;

    std::vector<std::unique_ptr<PositionKeyModel>> m_positions;
    std::vector<std::unique_ptr<RotationKeyModel>> m_rotations;
    std::vector<std::unique_ptr<ScaleKeyModel>> m_scales;
    mutable std::vector<Rotation> m_orientations;  // of each rotation key; empty when to be made anew
};

}  // namespace kernix
