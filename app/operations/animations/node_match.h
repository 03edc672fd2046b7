// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// The partner in another scene of each matched node of a scene.
using NodePartners = std::unordered_map<const kernix::NodeModel*, kernix::NodeModel*>;

// Matches by the names from the root down; siblings of the same name match in order.
NodePartners MatchByPath(kernix::SceneModel& from, kernix::SceneModel& to);

// Matches by name, regardless of the hierarchy. A name that is not unique in both scenes matches nothing.
NodePartners MatchByName(kernix::SceneModel& from, kernix::SceneModel& to);

// A node of one scene and its partner in the other, each by name, or by path ("/root/arm").
using NodePairs = std::vector<std::pair<std::string, std::string>>;

// Throws std::runtime_error for a name or path that does not identify exactly one node of its scene.
NodePartners MatchByPairs(kernix::SceneModel& from, kernix::SceneModel& to, const NodePairs& pairs);

// Reads pairs from a JSON object with a member for each: {"/root/arm": "Arm"}. Throws Error.
NodePairs ReadNodePairs(const std::filesystem::path& file);

// "/root/arm". Not unique where siblings share a name.
std::string NodePath(const kernix::NodeModel& node);

}  // namespace zr
