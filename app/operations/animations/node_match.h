// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// How nodes of one scene are matched with those of another.
using NodePartners = std::unordered_map<const kernix::NodeModel*, kernix::NodeModel*>;

// By the names from the root down, and siblings of the same name by their order.
NodePartners MatchByPath(kernix::SceneModel& from, kernix::SceneModel& to);

// By name, regardless of the hierarchy. A name that is not unique in both scenes matches nothing.
NodePartners MatchByName(kernix::SceneModel& from, kernix::SceneModel& to);

// A node of one scene and its partner in the other, each by name, or by path ("/root/arm").
using NodePairs = std::vector<std::pair<std::string, std::string>>;

// Throws std::runtime_error for a name or path that none or several of a scene's nodes have.
NodePartners MatchByPairs(kernix::SceneModel& from, kernix::SceneModel& to, const NodePairs& pairs);

// The pairs of a JSON object whose members are texts. Throws Error.
NodePairs ReadNodePairs(const std::filesystem::path& file);

// "/root/arm"
std::string NodePath(const kernix::NodeModel& node);

}  // namespace zr
