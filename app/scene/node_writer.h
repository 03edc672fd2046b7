// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/document_changes.h"

namespace zr {

// Applies the changes to the document's nodes. References follow an object to another node, skins follow
// their joints. Removes no nodes.
void WriteNodes(gltf::Document& document, const ChangedNodes& changes);

}  // namespace zr
