// SPDX-License-Identifier: MIT
#include "kernix/scene/transform_track.h"

#include <algorithm>
#include <cmath>

namespace kernix {
namespace {

bool IsKeyType(int keyType) {
    return std::find(std::begin(kKeyTypes), std::end(kKeyTypes), keyType) != std::end(kKeyTypes);
}

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

template <typename K>
bool IsCubic(const K& a, const K& b) {
    return a.Passes(vl::zr::kInterpolationCubic) && a.m_tangents && b.m_tangents;
}

template <typename Objects>
void RetimeObjects(Objects& keys, float scale, float offset) {
    for (auto& key : keys) {
        key->m_fTime = key->m_fTime * scale + offset;
        if (!key->m_tangents || scale == 0) continue;
        for (float& slope : key->m_tangents->in) slope /= scale;
        for (float& slope : key->m_tangents->out) slope /= scale;
        if (scale < 0) std::swap(key->m_tangents->in, key->m_tangents->out);
    }
    if (scale < 0) std::reverse(keys.begin(), keys.end());
}

template <typename Column, typename Make>
void EvaluateVector(Column& column, Make make, float time, const vl::Vector3<float>& rest, double (&out)[3]) {
    const auto put = [&](const vl::Vector3<float>& v) { out[0] = v.x, out[1] = v.y, out[2] = v.z; };
    if (column.Count() == 0) return put(rest);
    if (!column.IsOpen()) return EvaluateNumbers(column.Packed().Get(), time, out);
    const auto& keys = column.Open(make);
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

std::unique_ptr<Tangents> TangentsOf(const Curve& curve, std::size_t index) {
    if (!curve.IsCubic()) return nullptr;
    const std::size_t width = curve.Width();
    const float* value = curve.Value(index);
    auto tangents = std::make_unique<Tangents>();
    std::copy_n(value - width, width, tangents->in.begin());
    std::copy_n(value + width, width, tangents->out.begin());
    return tangents;
}

template <typename K>
auto Described(std::unique_ptr<K> key, const Curve& curve, std::size_t index) {
    key->m_fTime = curve.times[index];
    key->m_params[0] = static_cast<float>(curve.interpolation);
    key->m_tangents = TangentsOf(curve, index);
    return key;
}

template <typename K>
std::unique_ptr<K> MakeVectorKey(const Curve& curve, std::size_t index) {
    auto key = Described(std::make_unique<K>(), curve, index);
    const float* value = curve.Value(index);
    key->m_value = {value[0], value[1], value[2]};
    return key;
}

constexpr auto MakePosition = MakeVectorKey<PositionKeyModel>;
constexpr auto MakeScale = MakeVectorKey<ScaleKeyModel>;

// Returns a function that makes the rotation keys of a track.
auto RotationMaker(const TransformTrack& track) {
    // A key notifies its track of changes, which only a caller that may change the track can make.
    return [&owner = const_cast<TransformTrack&>(track)](const Curve& curve, std::size_t index) {
        auto key = std::make_unique<RotationKeyModel>(owner);
        const float* q = curve.Value(index);
        key->SetQuaternion({q[0], q[1], q[2], q[3]});
        return Described(std::move(key), curve, index);
    };
}

// The rotation that leads from one orientation to another.
Rotation Step(const Rotation& from, const Rotation& to) {
    return from.Inverted().Times(to);
}

// The step, half a turn at most, in the direction of `way`, which leads from one orientation to the next.
vl::AngleAxis StepAlong(const Rotation& way, Rotation step) {
    if (step.Dot(IsLongWay(way.w) ? way.Negated() : way) < 0) step = step.Negated();
    step.w = std::max(step.w, 0.0);
    return step.ToAngleAxis();
}

}  // namespace

PositionKeyModel* TransformTrack::AddPosition(float time) {
    return Insert(m_positions.OpenToChange(MakePosition), time, std::make_unique<PositionKeyModel>());
}

ScaleKeyModel* TransformTrack::AddScale(float time) {
    return Insert(m_scales.OpenToChange(MakeScale), time, std::make_unique<ScaleKeyModel>());
}

RotationKeyModel* TransformTrack::AddRotation(float time) {
    Changed();
    return Insert(m_rotations.OpenToChange(RotationMaker(*this)), time,
                  std::make_unique<RotationKeyModel>(*this));
}

const std::vector<std::unique_ptr<PositionKeyModel>>& TransformTrack::Positions() const {
    return m_positions.Open(MakePosition);
}

const std::vector<std::unique_ptr<RotationKeyModel>>& TransformTrack::Rotations() const {
    return m_rotations.Open(RotationMaker(*this));
}

const std::vector<std::unique_ptr<ScaleKeyModel>>& TransformTrack::Scales() const {
    return m_scales.Open(MakeScale);
}

// Calls visit(column, make) for the keys of the type.
template <typename Visit>
auto TransformTrack::WithColumn(int keyType, Visit visit) const {
    switch (keyType) {
        case vl::zr::kKeyPosition:
            return visit(m_positions, MakePosition);
        case vl::zr::kKeyRotation:
            return visit(m_rotations, RotationMaker(*this));
        default:
            return visit(m_scales, MakeScale);
    }
}

const StoredCurve* TransformTrack::Packed(int keyType) const {
    return WithColumn(keyType, [](auto& column, auto) -> const StoredCurve* {
        return column.IsOpen() ? nullptr : &column.Packed();
    });
}

void TransformTrack::SetCurve(int keyType, StoredCurve curve) {
    WithColumn(keyType, [&](auto& column, auto) { column.Set(std::move(curve)); });
    Changed();
}

StoredCurve TransformTrack::TakeCurve(int keyType) {
    Changed();
    return WithColumn(keyType, [](auto& column, auto) { return column.Take(); });
}

void TransformTrack::ForgetObjects() {
    for (const int keyType : kKeyTypes) {
        WithColumn(keyType, [](auto& column, auto) { column.ForgetObjects(); });
    }
    Changed();
}

void TransformTrack::Unload() {
    for (const int keyType : kKeyTypes) {
        WithColumn(keyType, [](auto& column, auto) { column.Packed().Unload(); });
    }
}

int TransformTrack::Count(int keyType) const {
    if (!IsKeyType(keyType)) return 0;
    return WithColumn(keyType, [](auto& column, auto) { return static_cast<int>(column.Count()); });
}

float TransformTrack::TimeOf(int keyType, int index) const {
    const auto at = static_cast<std::size_t>(index);
    return WithColumn(keyType, [at](auto& column, auto make) {
        return column.IsOpen() ? column.Open(make)[at]->m_fTime : column.Packed().Get().times[at];
    });
}

vl::zr::Key* TransformTrack::Get(int keyType, int index) const {
    if (index < 0 || index >= Count(keyType)) return nullptr;
    return WithColumn(keyType, [index](auto& column, auto make) -> vl::zr::Key* {
        return column.Open(make)[static_cast<std::size_t>(index)].get();
    });
}

void TransformTrack::Remove(int keyType, int index) {
    if (index < 0 || index >= Count(keyType)) return;
    WithColumn(keyType, [index](auto& column, auto make) {
        auto& keys = column.OpenToChange(make);
        keys.erase(keys.begin() + index);
    });
    Changed();
}

void TransformTrack::Clear(int keyType) {
    SetCurve(keyType, {});
}

std::optional<std::pair<float, float>> TransformTrack::GetRange() {
    std::optional<std::pair<float, float>> range;
    for (const int keyType : kKeyTypes) {
        const int count = Count(keyType);
        if (count == 0) continue;
        const float first = TimeOf(keyType, 0);
        const float last = TimeOf(keyType, count - 1);
        range = range ? std::pair(std::min(range->first, first), std::max(range->second, last))
                      : std::pair(first, last);
    }
    return range;
}

int TransformTrack::GetKeyCount() {
    return static_cast<int>(m_positions.Count() + m_rotations.Count() + m_scales.Count());
}

// Relative keys add up from the first one on.
const std::vector<Rotation>& TransformTrack::Orientations() const {
    const auto& rotations = Rotations();
    if (m_orientations.size() == rotations.size()) return m_orientations;
    m_orientations.clear();
    m_orientations.reserve(rotations.size());
    for (const auto& key : rotations) {
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
    if (m_rotations.Count() == 0) return Rotation::From(rest.rotation);
    if (!m_rotations.IsOpen()) return kernix::EvaluateRotation(m_rotations.Packed().Get(), time);
    const auto& rotations = Rotations();
    const auto& orientations = Orientations();
    const std::size_t next = FirstAfter(rotations, time);
    if (next == 0) return orientations.front();
    const RotationKeyModel& a = *rotations[next - 1];
    if (next == rotations.size() || a.m_fTime == time || a.Passes(vl::zr::kInterpolationStep)) {
        return orientations[next - 1];
    }
    const RotationKeyModel& b = *rotations[next];
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
        // The whole step is interpolated, also beyond half a turn.
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
    EvaluateVector(m_positions, MakePosition, time, rest.translation, sample.translation);
    EvaluateVector(m_scales, MakeScale, time, rest.scale, sample.scale);
    sample.rotation = EvaluateRotation(time, rest);
    return sample;
}

// Each step starts from what the steps before it add up to, so that their rounding does not accumulate; near
// half a turn that rounding must not reverse the step's direction.
void TransformTrack::NormalizeRotations() {
    auto& rotations = m_rotations.OpenToChange(RotationMaker(*this));
    const std::vector<Rotation> orientations = Orientations();
    Rotation shown, before;
    for (std::size_t i = 0; i < rotations.size(); ++i) {
        RotationKeyModel& key = *rotations[i];
        if (key.m_type != vl::zr::kRotationAngleAxis) {
            key.m_angleAxis = StepAlong(Step(before, orientations[i]), Step(shown, orientations[i]));
            key.m_type = vl::zr::kRotationAngleAxis;
        }
        before = orientations[i];
        shown = shown.Times(Rotation::From(key.m_angleAxis));
    }
    Changed();
}

void TransformTrack::Retime(float scale, float offset) {
    if (scale < 0 && m_rotations.IsOpen()) {
        // Steps lead forward; orientations can be read in either direction.
        const std::vector<Rotation> orientations = Orientations();
        const auto& rotations = Rotations();
        for (std::size_t i = 0; i < rotations.size(); ++i) {
            if (rotations[i]->m_type == vl::zr::kRotationAngleAxis) {
                rotations[i]->SetQuaternion(orientations[i].ToQuaternion());
            }
        }
    }
    for (const int keyType : kKeyTypes) {
        WithColumn(keyType, [&](auto& column, auto make) {
            if (column.Count() == 0) return;
            if (column.IsOpen()) return RetimeObjects(column.OpenToChange(make), scale, offset);
            column.Packed().Edit().Retime(scale, offset);
        });
    }
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
