// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/clean/clean_scene.h"

namespace zr {

class Host;

// Lets the user clean the scene in the module's dialog and, when it closes, writes the result; unless
// options.keepData, also removes what nothing refers to. Returns false, having written nothing, when the
// dialog is cancelled. Throws std::runtime_error where no window can be opened and, unless options.force,
// when an unknown extension could refer to what the dialog removes.
bool CleanInDialog(gltf::Document document, const std::filesystem::path& output, Host& host,
                   const CleanOptions& options);

}  // namespace zr
