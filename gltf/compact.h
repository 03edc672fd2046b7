// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "gltf/document.h"

namespace zr::gltf {

// Takes out of the marked buffers the bytes that no view holds, and of the marked views those that no
// accessor reads. A view that something else reads too, or may read, stays whole. Returns the number of bytes
// removed.
std::size_t CompactBuffers(Document& document, const std::vector<bool>& buffers,
                           const std::vector<bool>& views);

}  // namespace zr::gltf
