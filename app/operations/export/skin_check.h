// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/document_changes.h"
#include "gltf/document.h"

namespace zr {

// Of the skins that would lose a joint with the nodes that go: those that no node needs any more go too.
// Throws gltf::Error for one that a node still needs.
void CheckSkins(const gltf::Document& document, const ExportOptions& options, DocumentChanges& changes);

}  // namespace zr
