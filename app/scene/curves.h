// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "gltf/document.h"
#include "host/kinds.h"
#include "kernix/scene/transform_track.h"

namespace zr {

// The content of an animation sampler. A cubic curve has, key by key, an incoming slope, a value and an
// outgoing slope; others one value a key.
struct Curve {
    vl::zr::KeyInterpolation interpolation = vl::zr::kInterpolationLinear;
    std::vector<float> times;
    std::vector<float> values;

    bool operator==(const Curve& other) const;  // to the bit
    // Numbers of one value.
    std::size_t Width() const;
};

// Whether the sampler's data can be read.
bool IsReadable(const gltf::Document& document, const gltf::Json& sampler);
Curve ReadCurve(const gltf::Document& document, const gltf::Json& sampler);
// Adds the data and a sampler to the animation: the sampler's index. `type` is the accessor type of a value.
std::size_t AppendCurve(gltf::Document& document, std::size_t animation, const Curve& curve,
                        std::string_view type);

// Puts a curve's keys into a track, and takes them out again. Taking out keys that pass in different ways
// gives a linear curve: steps become two keys next to each other, cubic pieces are sampled so that no sample
// between differs by more than a hundred thousandth of the values' range.
void PutKeys(kernix::TransformTrack& track, int keyType, const Curve& curve);
Curve TakeKeys(const kernix::TransformTrack& track, int keyType);

// The keys as a linear curve, whatever way they pass.
Curve Straightened(const kernix::TransformTrack& track, int keyType);

// Puts the curve's keys in the place of the track's.
void ReplaceKeys(kernix::TransformTrack& track, int keyType, const Curve& curve);

}  // namespace zr
