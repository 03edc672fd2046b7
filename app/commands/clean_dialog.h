// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "app/operations/clean/clean_scene.h"

namespace zr {

class Host;

// Lets the user clean the scene in the module's dialog and, when it is closed, writes what is left; what
// nothing refers to goes too, unless options.keepData. False, and nothing is written, when the dialog is
// cancelled. Throws std::runtime_error where no window can be opened, and, unless options.force, when an
// extension that is not known could refer to what the dialog takes.
bool CleanInDialog(gltf::Document document, const std::filesystem::path& output, Host& host,
                   const CleanOptions& options);

}  // namespace zr
