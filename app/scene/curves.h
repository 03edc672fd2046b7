// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>

#include "gltf/document.h"
#include "gltf/key_accessors.h"
#include "kernix/scene/curve.h"
#include "kernix/scene/transform_track.h"

namespace zr {

using kernix::Curve;
using kernix::kKeyTypes;

// The components of a value of the key type: 4 for rotations, else 3.
std::size_t WidthOf(int keyType);

// Whether the sampler's data can be read.
bool IsReadable(const gltf::Document& document, const gltf::Json& sampler);
vl::zr::KeyInterpolation InterpolationOf(const gltf::Json& sampler);
// The curve of a sampler whose data can be read.
Curve ReadCurve(const gltf::Document& document, const gltf::Json& sampler);
// Adjusts each rotation that is about half a turn from its predecessor by less than a millionth of a turn, so
// that rounding cannot reverse the direction of interpolation. Leaves cubic curves alone.
void KeepWays(Curve& rotations);

// Adds curves to a document.
class CurveWriter {
public:
    explicit CurveWriter(gltf::Document& document) : m_document(document), m_keys(document) {}

    // Adds the data and a sampler to the animation; returns the sampler's index. `type` is the accessor type
    // of a value.
    std::size_t Append(std::size_t animation, const Curve& curve, std::string_view type);

private:
    gltf::Document& m_document;
    gltf::KeyAccessors m_keys;
};

// Adds a curve's keys to a track.
void PutKeys(kernix::TransformTrack& track, int keyType, const Curve& curve);

// Moves every key that is not later than its predecessor to the next representable time after it.
void MakeAscending(Curve& curve);

// A track's keys as a curve. Keys of different interpolations are baked.
Curve KeysOf(const kernix::TransformTrack& track, int keyType);

// Packs keys that exist as separate objects into curves again.
void PackKeys(kernix::TransformTrack& track);

// The keys as a linear curve, whatever their interpolation: a step becomes two adjacent keys; cubic segments
// are sampled to within 1e-5 of the greatest absolute value, or of 1 if that is smaller.
Curve BakedKeys(const kernix::TransformTrack& track, int keyType);

}  // namespace zr
