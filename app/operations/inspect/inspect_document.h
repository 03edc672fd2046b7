// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/inspect/table.h"
#include "gltf/document.h"

namespace zr::inspect {

// Tables of the content of a document: summary, scenes, nodes, meshes, materials, textures, skins, cameras,
// lights, animations, extensions, bytes and warnings. Empty tables are left out, except for warnings. The
// document is not changed. Throws gltf::Error.
std::vector<Table> InspectDocument(gltf::Document& document);

}  // namespace zr::inspect
