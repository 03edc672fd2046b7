// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The name that the tools gave a record, UTF-8; its node's own name when they gave none.
std::string NameOf(const ExportNode& record);

// Gives the document's materials the names that the tools gave them, if they did. Before WriteBack.
void WriteMaterialNames(LoadedScene& loaded, const Tool& tool);

// A JSON array with, for each node that is exported, its original "path" (names from the top, joined by '/'),
// "name" and "exported" name. Before the records' nodes are written.
std::string RenameMap(const Tool& tool);

}  // namespace zr
