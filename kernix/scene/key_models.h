// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <memory>

#include "host/api.h"
#include "host/key.h"

namespace kernix {

// Slopes of a cubic key, in units per second: of the incoming and of the outgoing curve. Three numbers for
// vectors; x, y, z, w of the key's quaternion for rotations.
struct Tangents {
    std::array<float, 4> in{};
    std::array<float, 4> out{};
};

template <typename Base>
class VectorKeyModel final : public Base {
public:
    void SetValue(const vl::Vector3<float>& value) override { m_value = value; }
    void GetValue(vl::Vector3<float>* value) override { *value = m_value; }

    vl::Vector3<float> m_value;
    std::unique_ptr<Tangents> m_tangents;  // null: a cubic key is interpolated linearly
};

using PositionKeyModel = VectorKeyModel<vl::zr::PositionKey>;
using ScaleKeyModel = VectorKeyModel<vl::zr::ScaleKey>;

class TransformTrack;

class KERNIX_API RotationKeyModel final : public vl::zr::RotationKey {
public:
    explicit RotationKeyModel(TransformTrack& track) : m_track(track) {}

    void SetValue(const vl::AngleAxis& value) override;
    void GetValue(vl::AngleAxis* value) override;
    void GetQuaternion(vl::Quaternion* value) override;
    void GetEuler(vl::Vector3<float>* angles, int* order) override;
    int GetRotationType() override { return m_type; }

    void SetQuaternion(const vl::Quaternion& value);
    void SetEuler(const vl::Vector3<float>& angles, int order);

    // The orientation that an Euler value stands for.
    static vl::Quaternion FromEuler(const vl::Vector3<float>& angles, int order);

    std::unique_ptr<Tangents> m_tangents;  // of m_quaternion, in every form

private:
    friend class TransformTrack;
    TransformTrack& m_track;
    int m_type = vl::zr::kRotationQuaternion;
    int m_order = 0;
    vl::Quaternion m_quaternion;  // of a quaternion key; kept when it becomes an angle-axis key
    vl::AngleAxis m_angleAxis;
    vl::Vector3<float> m_euler;
};

}  // namespace kernix
