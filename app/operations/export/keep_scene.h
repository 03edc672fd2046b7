// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "gltf/document.h"

namespace zr {

// Takes the other scenes out of the document, with the nodes that neither the scene nor the document itself
// refers to and the data that nothing refers to then; the scene becomes the default one. Throws gltf::Error:
// when there is no such scene and, unless `force`, when something that cannot be followed could refer to what
// goes.
void KeepScene(gltf::Document& document, std::size_t scene, bool force);

}  // namespace zr
