// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/document_changes.h"
#include "gltf/document.h"

namespace zr {

// Also removes the skins that lose a joint with the removed nodes. Throws gltf::Error for one that a
// remaining node still needs.
void CheckSkins(const gltf::Document& document, const ExportOptions& options, DocumentChanges& changes);

}  // namespace zr
