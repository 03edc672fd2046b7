// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Where the options leave out what selectors do not show: marks it so that the keyframe tools leave it out,
// and answers the options that ask for all the rest. Their own way of choosing would also leave cameras and
// lights as their nodes stand, and not as they aim.
ExportOptions WithChoicesMade(LoadedScene& loaded, ExportOptions options);

}  // namespace zr
