// SPDX-License-Identifier: MIT
#include "app/scene/curves.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <limits>
#include <memory>
#include <vector>

#include "app/scene/straighten.h"
#include "gltf/accessor.h"

namespace zr {
namespace {

using vl::zr::KeyInterpolation;

std::string_view NameOf(KeyInterpolation interpolation) {
    switch (interpolation) {
        case vl::zr::kInterpolationStep:
            return "STEP";
        case vl::zr::kInterpolationCubic:
            return "CUBICSPLINE";
        case vl::zr::kInterpolationLinear:
            break;
    }
    return "LINEAR";
}

// One key, whatever its type. Slopes: null where the key has none.
struct KeyView {
    float time;
    KeyInterpolation interpolation;
    float value[4];
    const float* slopeIn;
    const float* slopeOut;
    bool isStep = false;  // a rotation relative to the key before
};

KeyView View(const Curve& curve, std::size_t index) {
    const float* value = curve.Value(index);
    const std::size_t width = curve.Width();
    KeyView view{curve.times[index], curve.interpolation, {}, nullptr, nullptr};
    std::copy_n(value, width, view.value);
    if (curve.IsCubic()) {
        view.slopeIn = value - width;
        view.slopeOut = value + width;
    }
    return view;
}

template <typename Key>
KeyView Described(const Key& key, std::initializer_list<float> value) {
    KeyView view{
        key.m_fTime, static_cast<KeyInterpolation>(static_cast<int>(key.m_params[0])), {}, nullptr, nullptr};
    std::copy(value.begin(), value.end(), view.value);
    if (key.m_tangents) {
        view.slopeIn = key.m_tangents->in.data();
        view.slopeOut = key.m_tangents->out.data();
    }
    return view;
}

template <typename Key>
KeyView VectorView(const Key& key) {
    return Described(key, {key.m_value.x, key.m_value.y, key.m_value.z});
}

// shown: the previous key's orientation, to which an angle-axis key is relative; becomes this key's.
KeyView RotationView(kernix::RotationKeyModel& key, kernix::Rotation& shown) {
    const bool isStep = key.GetRotationType() == vl::zr::kRotationAngleAxis;
    vl::Quaternion q;
    if (isStep) {
        vl::AngleAxis step;
        key.GetValue(&step);
        shown = shown.Times(kernix::Rotation::From(step));
        q = shown.ToQuaternion();
    } else {
        key.GetQuaternion(&q);
        shown = kernix::Rotation::From(q);
    }
    KeyView view = Described(key, {q.x, q.y, q.z, q.w});
    view.isStep = isStep;
    return view;
}

std::vector<KeyView> Views(const kernix::TransformTrack& track, int keyType) {
    std::vector<KeyView> views;
    const auto add = [&views](const auto& keys, auto view) {
        views.reserve(keys.size());
        for (const auto& key : keys) views.push_back(view(*key));
    };
    if (const kernix::StoredCurve* packed = track.Packed(keyType)) {
        const Curve& curve = packed->Get();
        for (std::size_t i = 0; i < curve.times.size(); ++i) views.push_back(View(curve, i));
    } else if (keyType == vl::zr::kKeyRotation) {
        kernix::Rotation shown;
        add(track.Rotations(), [&shown](kernix::RotationKeyModel& key) { return RotationView(key, shown); });
    } else if (keyType == vl::zr::kKeyPosition) {
        add(track.Positions(), VectorView<kernix::PositionKeyModel>);
    } else {
        add(track.Scales(), VectorView<kernix::ScaleKeyModel>);
    }
    return views;
}

void AppendKey(Curve& curve, const KeyView& key, std::size_t width) {
    const float none[4] = {};
    curve.times.push_back(key.time);
    const auto add = [&](const float* values) {
        curve.values.insert(curve.values.end(), values, values + width);
    };
    if (curve.IsCubic()) add(key.slopeIn != nullptr ? key.slopeIn : none);
    add(key.value);
    if (curve.IsCubic()) add(key.slopeOut != nullptr ? key.slopeOut : none);
}

template <std::size_t kWidth>
KeyValue Sample(const kernix::TransformTrack& track, int keyType, float time) {
    const auto sample = track.Evaluate(time, {});
    if constexpr (kWidth == 4) {
        const vl::Quaternion q = sample.rotation.ToQuaternion();
        return KeyValue{q.x, q.y, q.z, q.w};
    } else {
        const double* value = keyType == vl::zr::kKeyPosition ? sample.translation : sample.scale;
        return KeyValue{static_cast<float>(value[0]), static_cast<float>(value[1]),
                        static_cast<float>(value[2])};
    }
}

// Adjusts a rotation that is about a half turn away from another one by less than a millionth of a turn, so
// that no rounding, here or in a reader, reverses the direction of interpolation.
void KeepWay(const float (&from)[4], float (&to)[4]) {
    constexpr double kMargin = 0x1p-22;
    constexpr double kNearHalfTurn = 1e-6;  // beyond, a step of more than half a turn is meant
    double dot = 0;
    bool isExact = true;  // all products are 0
    for (std::size_t i = 0; i < 4; ++i) {
        dot += double{from[i]} * to[i];
        isExact = isExact && from[i] * to[i] == 0;
    }
    if (isExact || dot < -kNearHalfTurn || dot >= kMargin) return;
    for (std::size_t i = 0; i < 4; ++i) to[i] = static_cast<float>(to[i] + (2 * kMargin - dot) * from[i]);
}

// The keys with strictly ascending times. Keys that share a time form a jump: the curve ends at the first and
// continues from the last, so the first moves to the next smaller time, unless that is negative.
std::vector<KeyView> Distinct(const kernix::TransformTrack& track, int keyType) {
    std::vector<KeyView> keys;
    for (KeyView& key : Views(track, keyType)) {
        if (key.isStep && !keys.empty()) KeepWay(keys.back().value, key.value);
        if (!keys.empty() && keys.back().time >= key.time) {
            const float before = std::nextafter(key.time, -std::numeric_limits<float>::infinity());
            const bool hasRoom = before >= 0 && (keys.size() < 2 || keys[keys.size() - 2].time < before);
            if (hasRoom) {
                keys.back().time = before;
            } else {
                keys.pop_back();
            }
        }
        keys.push_back(key);
    }
    return keys;
}

template <std::size_t kWidth>
Curve Baked(const kernix::TransformTrack& track, int keyType, const std::vector<KeyView>& keys) {
    float range = 1;
    for (const KeyView& key : keys)
        for (std::size_t i = 0; i < kWidth; ++i) range = std::max(range, std::abs(key.value[i]));
    const auto sample = [&](float time) { return Sample<kWidth>(track, keyType, time); };
    Curve curve;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        const float time = keys[i].time;
        AppendLinearKey<kWidth>(curve, time, keys[i].value);
        if (i + 1 == keys.size()) break;
        const float next = keys[i + 1].time;
        if (keys[i].interpolation == vl::zr::kInterpolationStep) {
            const float held = std::nextafter(next, -std::numeric_limits<float>::infinity());
            if (held > time) AppendLinearKey<kWidth>(curve, held, keys[i].value);
        } else if (keys[i].interpolation == vl::zr::kInterpolationCubic) {
            AppendStraightPieces<kWidth>(curve, time, next, sample(time), sample(next),
                                         range * kStraightTolerance,
                                         [&sample](float timeA, KeyValue& a, float timeB, KeyValue& b) {
                                             a = sample(timeA);
                                             b = sample(timeB);
                                         });
        }
    }
    return curve;
}

Curve Baked(const kernix::TransformTrack& track, int keyType, const std::vector<KeyView>& keys) {
    return keyType == vl::zr::kKeyRotation ? Baked<4>(track, keyType, keys) : Baked<3>(track, keyType, keys);
}

bool AscendsStrictly(const std::vector<float>& times) {
    return std::adjacent_find(times.begin(), times.end(), std::greater_equal<>()) == times.end();
}

}  // namespace

void KeepWays(Curve& rotations) {
    if (rotations.IsCubic()) return;
    for (std::size_t at = 4; at < rotations.values.size(); at += 4) {
        float from[4], to[4];
        std::copy_n(rotations.values.data() + at - 4, 4, from);
        std::copy_n(rotations.values.data() + at, 4, to);
        KeepWay(from, to);
        std::copy_n(to, 4, rotations.values.data() + at);
    }
}

std::size_t WidthOf(int keyType) {
    return keyType == vl::zr::kKeyRotation ? 4 : 3;
}

bool IsReadable(const gltf::Document& document, const gltf::Json& sampler) {
    return gltf::HasData(document, gltf::IndexMember(sampler, "input")) &&
           gltf::HasData(document, gltf::IndexMember(sampler, "output"));
}

KeyInterpolation InterpolationOf(const gltf::Json& sampler) {
    const gltf::Json* interpolation = sampler.Find("interpolation");
    for (KeyInterpolation known : {vl::zr::kInterpolationStep, vl::zr::kInterpolationCubic})
        if (interpolation != nullptr && interpolation->String() == NameOf(known)) return known;
    return vl::zr::kInterpolationLinear;
}

Curve ReadCurve(const gltf::Document& document, const gltf::Json& sampler) {
    Curve curve;
    curve.interpolation = InterpolationOf(sampler);
    curve.times = gltf::ReadFloats(document, gltf::IndexMember(sampler, "input"));
    curve.values = gltf::ReadFloats(document, gltf::IndexMember(sampler, "output"));
    return curve;
}

std::size_t CurveWriter::Append(std::size_t animation, const Curve& curve, std::string_view type) {
    gltf::JsonTree& tree = m_document.Tree();
    const std::size_t input = m_keys.Times(curve.times);
    const std::size_t output = m_keys.Values(type, curve.values);
    gltf::Json sampler = gltf::JsonTree::MakeObject();
    tree.Member(sampler, "input") = tree.MakeIndex(input);
    tree.Member(sampler, "output") = tree.MakeIndex(output);
    if (curve.interpolation != vl::zr::kInterpolationLinear)
        tree.Member(sampler, "interpolation") = tree.MakeString(NameOf(curve.interpolation));
    gltf::Json& samplers = tree.Member(m_document.Elements(gltf::Kind::kAnimation)[animation], "samplers");
    if (!samplers.IsArray()) samplers = gltf::JsonTree::MakeArray();
    tree.Append(samplers, sampler);
    return samplers.Items().size() - 1;
}

void PutKeys(kernix::TransformTrack& track, int keyType, const Curve& curve) {
    if (track.Count(keyType) == 0 && std::is_sorted(curve.times.begin(), curve.times.end()))
        return track.SetCurve(keyType, kernix::StoredCurve(curve));
    for (std::size_t i = 0; i < curve.times.size(); ++i) {
        const KeyView view = View(curve, i);
        const auto put = [&](auto* key) {
            key->m_params[0] = static_cast<float>(view.interpolation);
            if (view.slopeIn == nullptr) return;
            key->m_tangents = std::make_unique<kernix::Tangents>();
            std::copy_n(view.slopeIn, WidthOf(keyType), key->m_tangents->in.begin());
            std::copy_n(view.slopeOut, WidthOf(keyType), key->m_tangents->out.begin());
        };
        if (keyType == vl::zr::kKeyRotation) {
            kernix::RotationKeyModel* key = track.AddRotation(view.time);
            key->SetQuaternion({view.value[0], view.value[1], view.value[2], view.value[3]});
            put(key);
        } else if (keyType == vl::zr::kKeyPosition) {
            kernix::PositionKeyModel* key = track.AddPosition(view.time);
            key->SetValue({view.value[0], view.value[1], view.value[2]});
            put(key);
        } else {
            kernix::ScaleKeyModel* key = track.AddScale(view.time);
            key->SetValue({view.value[0], view.value[1], view.value[2]});
            put(key);
        }
    }
}

namespace {

// Whether a curve can be stored as it is.
bool IsPlain(const Curve& curve) {
    return (!curve.IsCubic() || curve.times.size() != 1) && AscendsStrictly(curve.times);
}

}  // namespace

Curve KeysOf(const kernix::TransformTrack& track, int keyType) {
    const kernix::StoredCurve* packed = track.Packed(keyType);
    if (packed != nullptr && IsPlain(packed->Get())) return packed->Get();
    const std::vector<KeyView> keys = Distinct(track, keyType);
    Curve curve;
    if (keys.empty()) return curve;
    const bool alike = std::all_of(keys.begin(), keys.end(), [&](const KeyView& key) {
        return key.interpolation == keys.front().interpolation;
    });
    if (!alike || (keys.size() == 1 && keys[0].interpolation == vl::zr::kInterpolationCubic))
        return Baked(track, keyType, keys);
    curve.interpolation = keys.front().interpolation;
    for (const KeyView& key : keys) AppendKey(curve, key, WidthOf(keyType));
    return curve;
}

void PackKeys(kernix::TransformTrack& track) {
    track.ForgetObjects();
    for (const int keyType : kKeyTypes) {
        if (track.Packed(keyType) == nullptr)
            track.SetCurve(keyType, kernix::StoredCurve(KeysOf(track, keyType)));
    }
}

void MakeAscending(Curve& curve) {
    for (std::size_t i = 1; i < curve.times.size(); ++i) {
        if (curve.times[i] > curve.times[i - 1]) continue;
        curve.times[i] = std::nextafter(curve.times[i - 1], std::numeric_limits<float>::infinity());
    }
}

Curve BakedKeys(const kernix::TransformTrack& track, int keyType) {
    const kernix::StoredCurve* packed = track.Packed(keyType);
    if (packed == nullptr || !AscendsStrictly(packed->Get().times))
        return Baked(track, keyType, Distinct(track, keyType));
    return keyType == vl::zr::kKeyRotation ? Straightened<4>(packed->Get()) : Straightened<3>(packed->Get());
}

}  // namespace zr
