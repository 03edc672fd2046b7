// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>

#include "gltf/document.h"
#include "kernix/scene/curve.h"
#include "kernix/scene/transform_track.h"

namespace zr {

using kernix::Curve;
using kernix::kKeyTypes;

// Numbers of a value of the key type: 4 for rotations, else 3.
std::size_t WidthOf(int keyType);

// Whether the sampler's data can be read.
bool IsReadable(const gltf::Document& document, const gltf::Json& sampler);
// How the keys of the sampler pass.
vl::zr::KeyInterpolation InterpolationOf(const gltf::Json& sampler);
Curve ReadCurve(const gltf::Document& document, const gltf::Json& sampler);

// Adds curves to a document. Equal key times are stored once.
class CurveWriter {
public:
    explicit CurveWriter(gltf::Document& document) : m_document(document) {}

    // Adds the data and a sampler to the animation: the sampler's index. `type` is the accessor type of a
    // value. The curve must outlive the writer.
    std::size_t Append(std::size_t animation, const Curve& curve, std::string_view type);

private:
    gltf::Document& m_document;
    std::unordered_map<std::string_view, std::size_t> m_inputs;  // accessors, by the bytes of the times
};

// Adds a curve's keys to a track.
void PutKeys(kernix::TransformTrack& track, int keyType, const Curve& curve);

// Keys that share a time, or that mapping brought together, go on by the smallest step that a float can make.
void MakeAscending(Curve& curve);

// A track's keys as a curve. Keys that pass in different ways are baked.
Curve KeysOf(const kernix::TransformTrack& track, int keyType);

// Lays keys that somebody made as objects side by side again.
void PackKeys(kernix::TransformTrack& track);

// The keys as a linear curve, whatever way they pass: steps become two keys next to each other, cubic pieces
// are sampled so that no sample between differs by more than a hundred thousandth of the values' range.
Curve BakedKeys(const kernix::TransformTrack& track, int keyType);

}  // namespace zr
