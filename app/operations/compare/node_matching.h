// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/operations/compare/evaluator.h"

namespace zr::compare {

// Which nodes of two documents match.
struct NodeMatching {
    std::vector<std::pair<std::size_t, std::size_t>> pairs;  // parents before their children
    std::vector<std::size_t> ofA, ofB;                       // the partner of each node, or kNone
    std::vector<std::size_t> onlyA, onlyB;                   // shown nodes without a partner
    std::vector<std::pair<std::size_t, std::size_t>> moved;  // pairs whose parents are not partners

    bool IsComplete() const { return onlyA.empty() && onlyB.empty() && moved.empty(); }
};

// Matches the shown nodes from the roots down: children of a matched pair by name, and among equal names
// first by content, then by order; last by content alone. Nodes left over are matched by names that are
// unique among them in both documents. Nodes outside the scenes, such as levels of detail and joints, are
// matched too. Takes linear time apart from sorting.
NodeMatching MatchNodes(const Evaluator& a, const Evaluator& b);

}  // namespace zr::compare
