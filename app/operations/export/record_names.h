// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The name that the tools gave a record, UTF-8; its node's own name when they gave none.
std::string NameOf(const ExportNode& record);

// The names that the tools gave the document's materials, if they did, by index.
std::vector<std::pair<std::size_t, std::string>> MaterialNamesOf(const LoadedScene& loaded, const Tool& tool);

// A JSON array with, for each node that is exported, its original "path" (names from the top, joined by '/'),
// "name" and "exported" name.
std::string RenameMap(const Tool& tool);

}  // namespace zr
