// SPDX-License-Identifier: MIT
#include "kernix/scene/transform_track.h"

#include <algorithm>
#include <cmath>

namespace kernix {
namespace {

template <typename Keys>
std::size_t FirstAfter(const Keys& keys, float time) {
    const auto after = std::upper_bound(keys.begin(), keys.end(), time,
                                        [](float t, const auto& key) { return t < key->m_fTime; });
    return static_cast<std::size_t>(after - keys.begin());
}

template <typename K>
K* Insert(std::vector<std::unique_ptr<K>>& keys, float time, std::unique_ptr<K> key) {
    key->m_fTime = time;
    K* added = key.get();
    if (keys.empty() || !(time < keys.back()->m_fTime)) {
        keys.push_back(std::move(key));
    } else {
        keys.insert(keys.begin() + static_cast<std::ptrdiff_t>(FirstAfter(keys, time)), std::move(key));
    }
    return added;
}

// Cubic Hermite curve between two values with slopes, s from 0 to 1 over span seconds.
double Hermite(double a, double slopeA, double b, double slopeB, double s, double span) {
    const double s2 = s * s;
    const double s3 = s2 * s;
    return (2 * s3 - 3 * s2 + 1) * a + span * (s3 - 2 * s2 + s) * slopeA + (-2 * s3 + 3 * s2) * b +
           span * (s3 - s2) * slopeB;
}

template <typename K>
bool IsCubic(const K& a, const K& b) {
    return a.Passes(vl::zr::kInterpolationCubic) && a.m_tangents && b.m_tangents;
}

template <typename Keys>
void EvaluateVector(const Keys& keys, float time, const vl::Vector3<float>& rest, double (&out)[3]) {
    const auto put = [&](const vl::Vector3<float>& v) { out[0] = v.x, out[1] = v.y, out[2] = v.z; };
    if (keys.empty()) return put(rest);
    const std::size_t next = FirstAfter(keys, time);
    if (next == 0) return put(keys.front()->m_value);
    const auto& a = *keys[next - 1];
    if (next == keys.size() || a.m_fTime == time || a.Passes(vl::zr::kInterpolationStep)) {
        return put(a.m_value);
    }
    const auto& b = *keys[next];
    const double span = double{b.m_fTime} - a.m_fTime;
    const double s = (double{time} - a.m_fTime) / span;
    const float va[3] = {a.m_value.x, a.m_value.y, a.m_value.z};
    const float vb[3] = {b.m_value.x, b.m_value.y, b.m_value.z};
    for (std::size_t i = 0; i < 3; ++i) {
        out[i] = IsCubic(a, b) ? Hermite(va[i], a.m_tangents->out[i], vb[i], b.m_tangents->in[i], s, span)
                               : va[i] + (double{vb[i]} - va[i]) * s;
    }
}

Rotation Slerp(double s, const Rotation& a, const Rotation& b) {
    double dot = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    const double sign = dot < 0 ? -1 : 1;
    dot = std::min(std::fabs(dot), 1.0);
    double wa = 1 - s;
    double wb = s;
    if (dot < 1 - 1e-9) {
        const double angle = std::acos(dot);
        wa = std::sin(wa * angle) / std::sin(angle);
        wb = std::sin(wb * angle) / std::sin(angle);
    }
    wb *= sign;
    const Rotation sum{a.x * wa + b.x * wb, a.y * wa + b.y * wb, a.z * wa + b.z * wb, a.w * wa + b.w * wb};
    const double length = std::sqrt(sum.x * sum.x + sum.y * sum.y + sum.z * sum.z + sum.w * sum.w);
    return {sum.x / length, sum.y / length, sum.z / length, sum.w / length};
}

}  // namespace

PositionKeyModel* TransformTrack::AddPosition(float time) {
    return Insert(m_positions, time, std::make_unique<PositionKeyModel>());
}

ScaleKeyModel* TransformTrack::AddScale(float time) {
    return Insert(m_scales, time, std::make_unique<ScaleKeyModel>());
}

RotationKeyModel* TransformTrack::AddRotation(float time) {
    Changed();
    return Insert(m_rotations, time, std::make_unique<RotationKeyModel>(*this));
}

void TransformTrack::Reserve(int keyType, std::size_t count) {
    switch (keyType) {
        case vl::zr::kKeyPosition:
            m_positions.reserve(m_positions.size() + count);
            break;
        case vl::zr::kKeyRotation:
            m_rotations.reserve(m_rotations.size() + count);
            break;
        default:
            m_scales.reserve(m_scales.size() + count);
            break;
    }
}

int TransformTrack::Count(int keyType) const {
    switch (keyType) {
        case vl::zr::kKeyPosition:
            return static_cast<int>(m_positions.size());
        case vl::zr::kKeyRotation:
            return static_cast<int>(m_rotations.size());
        case vl::zr::kKeyScale:
            return static_cast<int>(m_scales.size());
        default:
            return 0;
    }
}

vl::zr::Key* TransformTrack::Get(int keyType, int index) const {
    if (index < 0 || index >= Count(keyType)) return nullptr;
    const auto i = static_cast<std::size_t>(index);
    switch (keyType) {
        case vl::zr::kKeyPosition:
            return m_positions[i].get();
        case vl::zr::kKeyRotation:
            return m_rotations[i].get();
        default:
            return m_scales[i].get();
    }
}

void TransformTrack::Remove(int keyType, int index) {
    if (index < 0 || index >= Count(keyType)) return;
    switch (keyType) {
        case vl::zr::kKeyPosition:
            m_positions.erase(m_positions.begin() + index);
            break;
        case vl::zr::kKeyRotation:
            m_rotations.erase(m_rotations.begin() + index);
            break;
        default:
            m_scales.erase(m_scales.begin() + index);
            break;
    }
    Changed();
}

void TransformTrack::Clear(int keyType) {
    switch (keyType) {
        case vl::zr::kKeyPosition:
            m_positions.clear();
            break;
        case vl::zr::kKeyRotation:
            m_rotations.clear();
            break;
        default:
            m_scales.clear();
            break;
    }
    Changed();
}

std::optional<std::pair<float, float>> TransformTrack::GetRange() {
    std::optional<std::pair<float, float>> range;
    const auto widen = [&](const auto& keys) {
        if (keys.empty()) return;
        const float first = keys.front()->m_fTime;
        const float last = keys.back()->m_fTime;
        range = range ? std::pair(std::min(range->first, first), std::max(range->second, last))
                      : std::pair(first, last);
    };
    widen(m_positions);
    widen(m_rotations);
    widen(m_scales);
    return range;
}

int TransformTrack::GetKeyCount() {
    return static_cast<int>(m_positions.size() + m_rotations.size() + m_scales.size());
}

// Relative keys add up from the first one on.
const std::vector<Rotation>& TransformTrack::Orientations() const {
    if (m_orientations.size() == m_rotations.size()) return m_orientations;
    m_orientations.clear();
    m_orientations.reserve(m_rotations.size());
    for (const auto& key : m_rotations) {
        if (key->m_type == vl::zr::kRotationAngleAxis) {
            const Rotation step = Rotation::From(key->m_angleAxis);
            m_orientations.push_back(m_orientations.empty() ? step : m_orientations.back().Times(step));
        } else {
            m_orientations.push_back(Rotation::From(key->m_quaternion));
        }
    }
    return m_orientations;
}

Rotation TransformTrack::EvaluateRotation(float time, const Pose& rest) const {
    if (m_rotations.empty()) return Rotation::From(rest.rotation);
    const auto& orientations = Orientations();
    const std::size_t next = FirstAfter(m_rotations, time);
    if (next == 0) return orientations.front();
    const RotationKeyModel& a = *m_rotations[next - 1];
    if (next == m_rotations.size() || a.m_fTime == time || a.Passes(vl::zr::kInterpolationStep)) {
        return orientations[next - 1];
    }
    const RotationKeyModel& b = *m_rotations[next];
    const double span = double{b.m_fTime} - a.m_fTime;
    const double s = (double{time} - a.m_fTime) / span;
    if (IsCubic(a, b)) {
        const float qa[4] = {a.m_quaternion.x, a.m_quaternion.y, a.m_quaternion.z, a.m_quaternion.w};
        const float qb[4] = {b.m_quaternion.x, b.m_quaternion.y, b.m_quaternion.z, b.m_quaternion.w};
        double q[4];
        double length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            q[i] = Hermite(qa[i], a.m_tangents->out[i], qb[i], b.m_tangents->in[i], s, span);
            length += q[i] * q[i];
        }
        length = std::sqrt(length);
        if (length > 0) return {q[0] / length, q[1] / length, q[2] / length, q[3] / length};
    }
    if (b.m_type == vl::zr::kRotationAngleAxis) {
        // The whole step is turned, also beyond half a turn.
        const auto& step = b.m_angleAxis;
        return orientations[next - 1].Times(Rotation::About(step.x, step.y, step.z, step.angle * s));
    }
    if (a.m_type == vl::zr::kRotationEuler && b.m_type == vl::zr::kRotationEuler && a.m_order == b.m_order) {
        const auto mix = [&](float from, float to) {
            return static_cast<float>(from + (double{to} - from) * s);
        };
        return Rotation::From(RotationKeyModel::FromEuler(
            {mix(a.m_euler.x, b.m_euler.x), mix(a.m_euler.y, b.m_euler.y), mix(a.m_euler.z, b.m_euler.z)},
            b.m_order));
    }
    return Slerp(s, orientations[next - 1], orientations[next]);
}

TransformTrack::Sample TransformTrack::Evaluate(float time, const Pose& rest) const {
    Sample sample;
    EvaluateVector(m_positions, time, rest.translation, sample.translation);
    EvaluateVector(m_scales, time, rest.scale, sample.scale);
    sample.rotation = EvaluateRotation(time, rest);
    return sample;
}

// Each step leads from what the steps before it add up to, so that their rounding does not add up as well.
void TransformTrack::NormalizeRotations() {
    const std::vector<Rotation> orientations = Orientations();
    Rotation shown;
    for (std::size_t i = 0; i < m_rotations.size(); ++i) {
        RotationKeyModel& key = *m_rotations[i];
        if (key.m_type != vl::zr::kRotationAngleAxis) {
            key.m_angleAxis = shown.Inverted().Times(orientations[i]).ToAngleAxis();
            key.m_type = vl::zr::kRotationAngleAxis;
        }
        shown = shown.Times(Rotation::From(key.m_angleAxis));
    }
    Changed();
}

void TransformTrack::Retime(float scale, float offset) {
    const auto retime = [&](auto& keys) {
        for (auto& key : keys) {
            key->m_fTime = key->m_fTime * scale + offset;
            if (!key->m_tangents || scale == 0) continue;
            for (float& slope : key->m_tangents->in) slope /= scale;
            for (float& slope : key->m_tangents->out) slope /= scale;
            if (scale < 0) std::swap(key->m_tangents->in, key->m_tangents->out);
        }
        if (scale < 0) std::reverse(keys.begin(), keys.end());
    };
    if (scale < 0) {
        // Steps lead forward; orientations can be read in either direction.
        const std::vector<Rotation> orientations = Orientations();
        for (std::size_t i = 0; i < m_rotations.size(); ++i) {
            if (m_rotations[i]->m_type == vl::zr::kRotationAngleAxis) {
                m_rotations[i]->SetQuaternion(orientations[i].ToQuaternion());
            }
        }
    }
    retime(m_positions);
    retime(m_rotations);
    retime(m_scales);
    Changed();
}

void RotationKeyModel::SetValue(const vl::AngleAxis& value) {
    m_type = vl::zr::kRotationAngleAxis;
    m_angleAxis = value;
    m_tangents.reset();
    m_track.Changed();
}

void RotationKeyModel::SetQuaternion(const vl::Quaternion& value) {
    m_type = vl::zr::kRotationQuaternion;
    m_quaternion = value;
    m_track.Changed();
}

void RotationKeyModel::SetEuler(const vl::Vector3<float>& angles, int order) {
    m_type = vl::zr::kRotationEuler;
    m_euler = angles;
    m_order = order;
    m_quaternion = FromEuler(angles, order);
    m_tangents.reset();
    m_track.Changed();
}

void RotationKeyModel::GetValue(vl::AngleAxis* value) {
    *value = m_type == vl::zr::kRotationAngleAxis ? m_angleAxis : vl::AngleAxis(m_quaternion);
}

void RotationKeyModel::GetQuaternion(vl::Quaternion* value) {
    *value = m_type == vl::zr::kRotationAngleAxis ? vl::Quaternion(m_angleAxis) : m_quaternion;
}

void RotationKeyModel::GetEuler(vl::Vector3<float>* angles, int* order) {
    *angles = m_type == vl::zr::kRotationEuler ? m_euler : vl::Vector3<float>{};
    *order = m_type == vl::zr::kRotationEuler ? m_order : 0;
}

vl::Quaternion RotationKeyModel::FromEuler(const vl::Vector3<float>& angles, int order) {
    Rotation result;
    for (int i = 0; i < 3; ++i, order >>= 2) {
        switch (order & 3) {
            case 0:
                result = result.Times(Rotation::About(1, 0, 0, angles.x));
                break;
            case 1:
                result = result.Times(Rotation::About(0, 1, 0, angles.y));
                break;
            case 2:
                result = result.Times(Rotation::About(0, 0, 1, angles.z));
                break;
            default:
                break;
        }
    }
    return result.ToQuaternion();
}

}  // namespace kernix
