// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// Which nodes of a scene an export shows. A node is shown when each of these holds, as far as it is given: it
// or a node above it matches a pattern of `only`; it stands on one of the layers; neither it nor a node above
// it matches a pattern of `exclude`.
struct NodeChoice {
    std::vector<std::string> only;
    std::vector<std::string> exclude;
    std::vector<std::string> layers;  // their names

    bool IsAll() const { return only.empty() && exclude.empty() && layers.empty(); }
};

struct ChosenNodes {
    std::vector<std::size_t> skins;  // of the document, that lose joints and that nothing shown uses
    std::vector<std::string> notes;  // what stays against the choice, and what refers to something that goes
};

// Leaves the other nodes out of the scene, their keys included. A node that shows nothing of its own stays,
// as a group that moves as it did, where something below it is shown, where a shown skin has it as a joint,
// and where a shown camera or light aims at it. Throws std::runtime_error when there is no such layer and
// when no node is left.
ChosenNodes ChooseNodes(LoadedScene& loaded, const NodeChoice& choice);

}  // namespace zr
