// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/curves.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Keys that the tools gave a record which nothing in the scene moved: of what a camera aims at, or of the
// camera that turns to follow it.
struct AddedKeys {
    std::size_t record;  // its place among all records
    kernix::AnimationModel* animation;
    Curve curves[3];  // position, rotation, scale; without times where there are no keys
};

// Appends those of a finished run.
void CollectAddedKeys(const Tool& tool, kernix::AnimationModel& animation, std::vector<AddedKeys>& added);

// Puts them into the scene, on the nodes that now stand for the records. nodes: of each record, in the
// document.
void WriteAddedKeys(LoadedScene& loaded, const std::vector<std::size_t>& nodes,
                    const std::vector<AddedKeys>& added);

}  // namespace zr
