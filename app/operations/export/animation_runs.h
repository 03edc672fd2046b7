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

// What all animations have in common, and the keys of each.
struct Runs {
    Runs(const LoadedScene& loaded, const ExportOptions& options) : factors(loaded, options) {}

    ValueFactors factors;
    Tool records;
    std::vector<PlayedAnimation> played;
    ReplacedKeys replaced;
    std::vector<AddedKeys> added;  // by record, not by node
    std::size_t keys = 0;          // of all records in all animations
};

// The tools run once for all of the scene's animations; the keys of each are then processed on the existing
// records, where these allow it. Every transform track is packed (PackAll). Throws std::runtime_error when
// two animations would need different nodes, and when nothing is to be exported.
Runs RunAll(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress);

// The tools run for one animation, or with null for the scene at rest, and make every curve linear.
Runs RunOne(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation, const ExportOptions& options);

// Packs the keys of every transform track: what the stages of an export read and replace are curves.
void PackAll(kernix::SceneModel& scene);

}  // namespace zr
