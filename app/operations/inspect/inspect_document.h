// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/inspect/table.h"
#include "gltf/document.h"

namespace zr::inspect {

// What a document holds: summary, scenes, nodes, meshes, materials, textures, skins, cameras, lights,
// animations, extensions, bytes and warnings. Tables without rows are left out, warnings excepted. The
// document stays as it is. Throws gltf::Error.
std::vector<Table> InspectDocument(gltf::Document& document);

}  // namespace zr::inspect
