// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "gltf/document.h"

namespace zr {

// Which nodes of a document a scene takes, and where each of them hangs.
struct NodeLayout {
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    bool isWhole = false;  // all scenes are taken, else the shown one alone
    // The roots that are taken of each scene; a document without scenes counts as one scene with every root.
    std::vector<std::vector<std::size_t>> scenes;
    std::size_t shown = 0;             // the document's default scene, else its first
    std::vector<std::size_t> parents;  // of every node; kNone for one at the top
    // Of every node: the one in whose place it is shown. A level of detail that the document itself hangs
    // nowhere has it, also as a level of another level, and hangs where that one does. kNone for any other.
    std::vector<std::size_t> standsFor;
    std::vector<std::size_t> order;  // the nodes that are taken, parents first

    // The node that a level stands for; any other node itself.
    std::size_t BaseOf(std::size_t node) const;

    // Of every node: whether the default scene shows it.
    std::vector<bool> Shown() const;
};

// whole: all scenes and, behind them, what stands outside of any; else the default scene alone.
NodeLayout LayOut(const gltf::Document& document, bool whole);

// The roots of the default scene, of the other scenes and outside of any, each once.
std::vector<std::size_t> AllRoots(const gltf::Document& document);

}  // namespace zr
