// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "gltf/document.h"

namespace zr {

// Removes the other scenes from the document, along with the nodes that neither this scene nor the document
// itself needs and the data that becomes unused; the scene becomes the default one. Throws gltf::Error when
// there is no such scene and, unless `force`, when an unknown extension could refer to what would be removed.
void KeepScene(gltf::Document& document, std::size_t scene, bool force);

}  // namespace zr
