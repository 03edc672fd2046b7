// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/document_changes.h"

namespace zr {

// Applies the changes to their document. Throws gltf::Error and, when axes are exchanged and a skin cannot be
// read, std::runtime_error; the document must not be used afterwards. Returns the opaque references that kept
// elements which the changes left unreferenced.
std::vector<gltf::OpaqueUse> WriteDocument(gltf::Document& document, const DocumentChanges& changes);

}  // namespace zr
