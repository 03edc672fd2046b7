// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/document_changes.h"
#include "gltf/document.h"

namespace zr {

// Adds the skins that lose a joint to the removed elements. Throws gltf::Error for a skin that a remaining
// node needs.
void CheckSkins(const gltf::Document& document, const ExportOptions& options, DocumentChanges& changes);

}  // namespace zr
