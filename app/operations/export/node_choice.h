// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// Which nodes of a scene an export shows. Empty lists do not restrict it. A node is shown if it or an
// ancestor matches a pattern of `only`, it is on one of the layers, and neither it nor an ancestor matches a
// pattern of `exclude`.
struct NodeChoice {
    std::vector<std::string> only;
    std::vector<std::string> exclude;
    std::vector<std::string> layers;  // names

    bool IsAll() const { return only.empty() && exclude.empty() && layers.empty(); }
};

struct ChosenNodes {
    std::vector<std::size_t> skins;  // indices of skins that lose joints and that no shown node uses
    std::vector<std::string> notes;  // which nodes stay although excluded, what refers to nodes that go, and
                                     // which patterns match nothing
};

// Removes the other nodes from the scene, with their keys. A node that is not shown stays, as a group with
// its motion, if a node below it is shown, if a skin that is shown has it as a joint, or if a camera or light
// that is shown aims at it. Throws std::runtime_error when a layer does not exist and when no node is left.
ChosenNodes ChooseNodes(LoadedScene& loaded, const NodeChoice& choice);

}  // namespace zr
