// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/operations/compare/evaluator.h"

namespace zr::compare {

// Which nodes of two documents are the same.
struct NodeMatching {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;  // parents before their children
    std::vector<std::size_t> ofA, ofB;                       // the partner of each node, or kNone
    std::vector<std::size_t> onlyA, onlyB;                   // shown nodes without one
    std::vector<std::pair<std::size_t, std::size_t>> moved;  // pairs below different parents

    bool IsComplete() const { return onlyA.empty() && onlyB.empty() && moved.empty(); }
};

// Matches the shown nodes from the roots down: children of a matched pair by name; of one name, those of
// equal content first, then by their order. What remains without a partner is matched by names that are
// unique among the remaining nodes of both documents. Nodes outside of the scenes, to which something may
// refer (levels of detail, joints), are matched as well. Linear but for sorting.
NodeMatching MatchNodes(const Evaluator& a, const Evaluator& b);

}  // namespace zr::compare
