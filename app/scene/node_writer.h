// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/document_changes.h"

namespace zr {

// Writes the nodes of the document's scene. Where an object moves to another node, references to it follow;
// skins follow their joints. Obsolete nodes stay until they are removed.
void WriteNodes(gltf::Document& document, const ChangedNodes& changes);

}  // namespace zr
