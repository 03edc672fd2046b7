// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "gltf/document.h"
#include "gltf/references.h"

namespace zr::gltf {

struct Collected {
    std::array<std::size_t, kKinds> removed{};  // elements, by kind
    std::size_t bytes = 0;                      // of buffers
    std::vector<OpaqueUse> refusals;            // what kept kinds from being collected
};

// Data that only other elements refer to.
inline constexpr KindSet kDataKinds{Kind::kTexture,  Kind::kImage,      Kind::kSampler,
                                    Kind::kAccessor, Kind::kBufferView, Kind::kBuffer};

// The elements of `kinds` that nothing refers to, or only such elements. References that cannot be followed
// do not count.
Removal Unreferenced(Document& document, KindSet kinds);

// Removes these elements and (with kAccessor) the samplers of animations that no channel uses; with kBuffer
// also the bytes of buffers that no view covers and, in views that only accessors read, those that none
// reads. A kind that something opaque may refer to is left alone unless `force`. Takes linear time.
Collected CollectGarbage(Document& document, KindSet kinds, bool force);

// The same, but leaves alone the elements of `spared`, what they refer to, and buffers and views that lose
// nothing. With what was unreferenced before a change as `spared`, it collects only what the change left
// behind.
Collected CollectGarbage(Document& document, KindSet kinds, bool force, const Removal& spared);

}  // namespace zr::gltf
