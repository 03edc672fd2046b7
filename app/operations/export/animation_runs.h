// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/export/export_options.h"
#include "app/operations/export/sampled_keys.h"
#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/scene_changes.h"
#include "app/services/host.h"

namespace zr {

// The records, which all animations share, and the keys of each animation.
struct Runs {
    Runs(const LoadedScene& loaded, const ExportOptions& options) : factors(loaded, options) {}

    ValueFactors factors;
    Tool records;
    std::vector<PlayedAnimation> played;
    ReplacedKeys replaced;
    std::vector<AddedKeys> added;  // by record, not by node
    std::size_t keys = 0;          // of all records in all animations
};

// Runs the tools once for all of the scene's animations, then processes the keys of each on the same records
// where possible. Every transform track must be packed (PackAll). Throws std::runtime_error when two
// animations need different nodes, and when there is nothing to export.
Runs RunAll(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress);

// Runs the tools for one animation, with every curve made linear. null: for the scene at rest.
Runs RunOne(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation, const ExportOptions& options);

// Packs the keys of every transform track into curves, which the stages of an export read and replace.
void PackAll(kernix::SceneModel& scene);

}  // namespace zr
