// SPDX-License-Identifier: MIT
#include "app/scene/curves.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "gltf/accessor.h"

namespace zr {
namespace {

using vl::zr::KeyInterpolation;

bool SameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

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

std::size_t WidthOf(int keyType) {
    return keyType == vl::zr::kKeyRotation ? 4 : 3;
}

vl::Quaternion Narrow(const kernix::Rotation& r) {
    return {static_cast<float>(r.x), static_cast<float>(r.y), static_cast<float>(r.z),
            static_cast<float>(r.w)};
}

// What TakeKeys reads of one key, whatever its type.
struct KeyView {
    float time;
    KeyInterpolation interpolation;
    float value[4];
    const kernix::Tangents* tangents;
};

// shown: the orientation of the rotation key before, from which an angle-axis key is a step; then this key's.
KeyView View(const kernix::TransformTrack& track, int keyType, int index, kernix::Rotation& shown) {
    KeyView view{};
    const vl::zr::Key* key = track.Get(keyType, index);
    view.time = key->m_fTime;
    view.interpolation = static_cast<KeyInterpolation>(static_cast<int>(key->m_params[0]));
    const auto at = static_cast<std::size_t>(index);
    if (keyType == vl::zr::kKeyRotation) {
        kernix::RotationKeyModel& rotation = *track.Rotations()[at];
        vl::Quaternion q;
        if (rotation.GetRotationType() == vl::zr::kRotationAngleAxis) {
            vl::AngleAxis step;
            rotation.GetValue(&step);
            shown = shown.Times(kernix::Rotation::From(step));
            q = Narrow(shown);
        } else {
            rotation.GetQuaternion(&q);
            shown = kernix::Rotation::From(q);
        }
        view.value[0] = q.x;
        view.value[1] = q.y;
        view.value[2] = q.z;
        view.value[3] = q.w;
        view.tangents = rotation.m_tangents.get();
        return view;
    }
    const auto take = [&](const auto& model) {
        view.value[0] = model.m_value.x;
        view.value[1] = model.m_value.y;
        view.value[2] = model.m_value.z;
        view.tangents = model.m_tangents.get();
    };
    if (keyType == vl::zr::kKeyPosition)
        take(*track.Positions()[at]);
    else
        take(*track.Scales()[at]);
    return view;
}

void AppendKey(Curve& curve, const KeyView& key, std::size_t width) {
    const float none[4] = {};
    curve.times.push_back(key.time);
    const bool cubic = curve.interpolation == vl::zr::kInterpolationCubic;
    const auto add = [&](const float* values) {
        curve.values.insert(curve.values.end(), values, values + width);
    };
    if (cubic) add(key.tangents != nullptr ? key.tangents->in.data() : none);
    add(key.value);
    if (cubic) add(key.tangents != nullptr ? key.tangents->out.data() : none);
}

std::vector<float> Sample(const kernix::TransformTrack& track, int keyType, float time) {
    const auto sample = track.Evaluate(time, {});
    const auto narrow = [](double value) { return static_cast<float>(value); };
    if (keyType == vl::zr::kKeyRotation) {
        const vl::Quaternion q = Narrow(sample.rotation);
        return {q.x, q.y, q.z, q.w};
    }
    const double* from = keyType == vl::zr::kKeyPosition ? sample.translation : sample.scale;
    return {narrow(from[0]), narrow(from[1]), narrow(from[2])};
}

// Adds samples of the piece between two keys until the straight lines between them lie close enough.
void Refine(Curve& curve, const kernix::TransformTrack& track, int keyType, float from, float to,
            float tolerance) {
    struct Piece {
        float from, to;
        int depth;
    };
    constexpr int kDeepest = 10;  // 1024 pieces
    std::vector<Piece> open{{from, to, 0}};
    while (!open.empty()) {
        const Piece piece = open.back();
        open.pop_back();
        const float middle = piece.from + (piece.to - piece.from) / 2;
        const auto a = Sample(track, keyType, piece.from), b = Sample(track, keyType, piece.to),
                   m = Sample(track, keyType, middle);
        float off = 0;
        for (std::size_t i = 0; i < m.size(); ++i) off = std::max(off, std::abs(m[i] - (a[i] + b[i]) / 2));
        // A curve may cross its chord in the middle; the first cuts are always made.
        const bool close = piece.depth >= 2 && off <= tolerance;
        if (close || piece.depth == kDeepest || middle <= piece.from || middle >= piece.to) {
            if (piece.to < to) {
                curve.times.push_back(piece.to);
                curve.values.insert(curve.values.end(), b.begin(), b.end());
            }
            continue;
        }
        open.push_back({middle, piece.to, piece.depth + 1});
        open.push_back({piece.from, middle, piece.depth + 1});
    }
}

// The keys with times that ascend. Keys that share a time make a jump: the curve comes in to the first and
// goes on from the last, so the first moves to the time before, where there is one that is not negative.
std::vector<KeyView> Distinct(const kernix::TransformTrack& track, int keyType) {
    std::vector<KeyView> keys;
    kernix::Rotation shown;
    for (int i = 0; i < track.Count(keyType); ++i) {
        const KeyView key = View(track, keyType, i, shown);
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

Curve Linearized(const kernix::TransformTrack& track, int keyType, const std::vector<KeyView>& keys) {
    const std::size_t width = WidthOf(keyType);
    float range = 1;
    for (const KeyView& key : keys)
        for (std::size_t i = 0; i < width; ++i) range = std::max(range, std::abs(key.value[i]));
    Curve curve;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        AppendKey(curve, keys[i], width);
        if (i + 1 == keys.size()) break;
        if (keys[i].interpolation == vl::zr::kInterpolationStep) {
            KeyView held = keys[i];
            held.time = std::nextafter(keys[i + 1].time, -std::numeric_limits<float>::infinity());
            if (held.time > keys[i].time) AppendKey(curve, held, width);
        } else if (keys[i].interpolation == vl::zr::kInterpolationCubic) {
            Refine(curve, track, keyType, keys[i].time, keys[i + 1].time, range * 1e-5F);
        }
    }
    return curve;
}

}  // namespace

bool Curve::operator==(const Curve& other) const {
    return interpolation == other.interpolation && SameBits(times, other.times) &&
           SameBits(values, other.values);
}

std::size_t Curve::Width() const {
    if (times.empty()) return 0;
    return values.size() / (times.size() * (interpolation == vl::zr::kInterpolationCubic ? 3 : 1));
}

bool IsReadable(const gltf::Document& document, const gltf::Json& sampler) {
    return gltf::HasData(document, gltf::IndexMember(sampler, "input")) &&
           gltf::HasData(document, gltf::IndexMember(sampler, "output"));
}

Curve ReadCurve(const gltf::Document& document, const gltf::Json& sampler) {
    Curve curve;
    const gltf::Json* interpolation = sampler.Find("interpolation");
    for (KeyInterpolation known : {vl::zr::kInterpolationStep, vl::zr::kInterpolationCubic})
        if (interpolation != nullptr && interpolation->String() == NameOf(known)) curve.interpolation = known;
    curve.times = gltf::ReadFloats(document, gltf::IndexMember(sampler, "input"));
    curve.values = gltf::ReadFloats(document, gltf::IndexMember(sampler, "output"));
    return curve;
}

std::size_t AppendCurve(gltf::Document& document, std::size_t animation, const Curve& curve,
                        std::string_view type) {
    gltf::JsonTree& tree = document.Tree();
    const std::size_t input = gltf::AppendFloats(document, "SCALAR", gltf::Use::kKeyTimes, curve.times);
    const std::size_t output = gltf::AppendFloats(document, type, gltf::Use::kKeyValues, curve.values);
    gltf::Json sampler = gltf::JsonTree::MakeObject();
    tree.Member(sampler, "input") = tree.MakeIndex(input);
    tree.Member(sampler, "output") = tree.MakeIndex(output);
    if (curve.interpolation != vl::zr::kInterpolationLinear)
        tree.Member(sampler, "interpolation") = tree.MakeString(NameOf(curve.interpolation));
    gltf::Json& samplers = tree.Member(document.Elements(gltf::Kind::kAnimation)[animation], "samplers");
    if (!samplers.IsArray()) samplers = gltf::JsonTree::MakeArray();
    tree.Append(samplers, sampler);
    return samplers.Items().size() - 1;
}

void PutKeys(kernix::TransformTrack& track, int keyType, const Curve& curve) {
    const std::size_t width = WidthOf(keyType);
    const bool cubic = curve.interpolation == vl::zr::kInterpolationCubic;
    track.Reserve(keyType, curve.times.size());
    for (std::size_t i = 0; i < curve.times.size(); ++i) {
        const float* value = curve.values.data() + (cubic ? 3 * i + 1 : i) * width;
        std::unique_ptr<kernix::Tangents> tangents;
        if (cubic) {
            tangents = std::make_unique<kernix::Tangents>();
            std::copy_n(value - width, width, tangents->in.begin());
            std::copy_n(value + width, width, tangents->out.begin());
        }
        const auto put = [&](auto* key) {
            key->m_params[0] = static_cast<float>(curve.interpolation);
            key->m_tangents = std::move(tangents);
        };
        if (keyType == vl::zr::kKeyRotation) {
            kernix::RotationKeyModel* key = track.AddRotation(curve.times[i]);
            key->SetQuaternion({value[0], value[1], value[2], value[3]});
            put(key);
        } else if (keyType == vl::zr::kKeyPosition) {
            kernix::PositionKeyModel* key = track.AddPosition(curve.times[i]);
            key->SetValue({value[0], value[1], value[2]});
            put(key);
        } else {
            kernix::ScaleKeyModel* key = track.AddScale(curve.times[i]);
            key->SetValue({value[0], value[1], value[2]});
            put(key);
        }
    }
}

Curve TakeKeys(const kernix::TransformTrack& track, int keyType) {
    const std::vector<KeyView> keys = Distinct(track, keyType);
    Curve curve;
    if (keys.empty()) return curve;
    const bool alike = std::all_of(keys.begin(), keys.end(), [&](const KeyView& key) {
        return key.interpolation == keys.front().interpolation;
    });
    if (!alike || (keys.size() == 1 && keys[0].interpolation == vl::zr::kInterpolationCubic))
        return Linearized(track, keyType, keys);
    curve.interpolation = keys.front().interpolation;
    for (const KeyView& key : keys) AppendKey(curve, key, WidthOf(keyType));
    return curve;
}

Curve Straightened(const kernix::TransformTrack& track, int keyType) {
    return Linearized(track, keyType, Distinct(track, keyType));
}

void ReplaceKeys(kernix::TransformTrack& track, int keyType, const Curve& curve) {
    track.Clear(keyType);
    PutKeys(track, keyType, curve);
}

}  // namespace zr
