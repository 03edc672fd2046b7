// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The name that the tools gave a record or, without one, its node's name. UTF-8.
std::string NameOf(const ExportNode& record);

// The names that the tools gave materials, with the index of each in the document. Empty if they gave none.
std::vector<std::pair<std::size_t, std::string>> MaterialNamesOf(const LoadedScene& loaded, const Tool& tool);

// A JSON array with an object for each exported node: its original "path" ("/root/arm") and "name", and the
// name "exported". Throws Error if the paths take more than the document's budget of memory.
std::string RenameMap(LoadedScene& loaded, const Tool& tool);

}  // namespace zr
