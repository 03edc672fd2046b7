// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/document_changes.h"

namespace zr {

// Writes the nodes of the document's scene. Where an object moves to another node, what refers to it as the
// node's follows; skins follow their joints. Nodes that go stay until they are removed.
void WriteNodes(gltf::Document& document, const ChangedNodes& changes);

}  // namespace zr
