// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "gltf/document.h"

namespace zr {

// The nodes of a document that a scene contains, and the parent of each.
struct NodeLayout {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    bool isWhole = false;  // contains all scenes, else only the shown one
    // The roots contained of each scene; a document without scenes counts as one scene with every root.
    std::vector<std::vector<std::size_t>> scenes;
    std::size_t shown = 0;             // the document's default scene, else its first
    std::vector<std::size_t> parents;  // of every node; kNone for a root
    // Of every node: the node in whose place it is shown, or kNone. Set for a level of detail, also one of
    // another level, to which the document itself gives no parent; it gets the parent of that node.
    std::vector<std::size_t> standsFor;
    std::vector<std::size_t> order;  // the nodes contained, parents first

    // The node that a level stands for; any other node itself.
    std::size_t BaseOf(std::size_t node) const;

    // Of every node: whether the default scene shows it.
    std::vector<bool> Shown() const;
};

// whole: all scenes, followed by the nodes outside of any; otherwise the default scene only.
NodeLayout LayOut(const gltf::Document& document, bool whole);

// The roots of the default scene, then those of the other scenes, then the remaining ones; each once.
std::vector<std::size_t> AllRoots(const gltf::Document& document);

}  // namespace zr
