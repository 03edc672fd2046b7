// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// If the options leave out nodes that selectors do not show, marks these so that the keyframe tools skip
// them, and returns options that export all others. The tools' own choice would also export cameras and
// lights with the orientation of their nodes, not with that of their aim.
ExportOptions WithChoicesMade(LoadedScene& loaded, ExportOptions options);

}  // namespace zr
