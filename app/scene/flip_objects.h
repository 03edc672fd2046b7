// SPDX-License-Identifier: MIT
#pragma once

#include "gltf/document.h"

namespace zr {

// Completes an exchange of Y and Z in a document whose nodes' transforms are exchanged on both sides: the
// content of each node moves to a child that mirrors it (a mesh) or turns it (a camera or light, which looks
// along -Z), placed at minus the pivot of the object. Inverse bind matrices are exchanged on the world side.
// What is drawn afterwards mirrors the original scene point for point. Throws std::runtime_error for a skin
// that cannot be read.
void FlipObjects(gltf::Document& document);

}  // namespace zr
