// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "gltf/document.h"

namespace zr::compare {

// The bytes of an image, from its view, its data URI or its file beside the document; empty if they cannot be
// read.
std::vector<std::byte> ImageBytes(const gltf::Document& document, const gltf::Json& image);

}  // namespace zr::compare
