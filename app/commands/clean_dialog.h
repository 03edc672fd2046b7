// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "app/operations/clean/clean_scene.h"

namespace zr {

class Host;

struct DialogCleaning {
    gltf::Document document;
    gltf::Collected collected;  // unreferenced elements that were removed
};

// Lets the user clean the scene in the module's dialog and, unless options.keepData, removes what nothing
// refers to. Returns nothing when the dialog is cancelled. Throws std::runtime_error where no window can be
// opened and, unless options.force, when an unknown extension could refer to what the dialog removes.
std::optional<DialogCleaning> CleanInDialog(gltf::Document document, Host& host, const CleanOptions& options);

}  // namespace zr
