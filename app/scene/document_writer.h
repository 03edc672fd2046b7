// SPDX-License-Identifier: MIT
#pragma once

#include "app/scene/document_changes.h"

namespace zr {

// Applies the changes to their document. Throws gltf::Error and, for a skin that cannot be read where axes
// are exchanged, std::runtime_error; the document is of no use then. What kept elements that the changes left
// unreferenced in the document.
std::vector<gltf::OpaqueUse> WriteDocument(gltf::Document& document, const DocumentChanges& changes);

}  // namespace zr
