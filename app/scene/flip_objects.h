// SPDX-License-Identifier: MIT
#pragma once

#include "gltf/document.h"

namespace zr {

// Completes an exchange of Y and Z in a document whose nodes' transforms are exchanged on both sides: the
// content of each node goes to a child that exchanges it (a mesh, mirrored) or turns it (a camera or light,
// which looks along -Z) and stands at minus the pivot of the object. Inverse bind matrices are exchanged on
// the world's side. What is drawn is then the mirror image of the scene before, point for point. Throws
// std::runtime_error for a skin that cannot be read.
void FlipObjects(gltf::Document& document);

}  // namespace zr
