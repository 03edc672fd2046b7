// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "app/gltf/document.h"
#include "host/kinds.h"

namespace kernix {
class TransformTrack;
}

namespace zr {

// Adds an animation to a document, channel by channel. Key times go out strictly ascending: of two keys at one
// time the second is moved by the smallest step that a float can make. A channel without keys is not written;
// equal runs of times share one accessor.
class AnimationWriter {
public:
    AnimationWriter(gltf::Document& document, std::string_view name);

    // path: "translation", "rotation", "scale" or "weights". values: components of each key, one after
    // another; of a cubic channel incoming slope, value and outgoing slope of each key.
    void AddChannel(std::size_t node, std::string_view path, vl::zr::KeyInterpolation interpolation,
                    std::span<const float> times, std::span<const float> values);

    // A channel with another target than a node's transform, as the target object of the channel says.
    void AddChannel(gltf::Json target, vl::zr::KeyInterpolation interpolation, std::span<const float> times,
                    std::span<const float> values, std::size_t componentsOfAnElement);

    // The three channels of a node from its track. A channel whose keys pass in different ways is written
    // linear, its steps as two keys a smallest step apart, its cubic parts sampled within 1e-5 of their range.
    void AddTrack(std::size_t node, const kernix::TransformTrack& track);

    // Appends the animation to the document; its index. Nothing is appended, and npos given, when no channel
    // was added.
    std::size_t Finish();
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

private:
    struct Parts;
    gltf::Document& m_document;
    std::string m_name;
};

}  // namespace zr
