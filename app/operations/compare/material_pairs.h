// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"

namespace zr::compare {

// Where a material is drawn, sorted: pairs of a node (numbered alike in both documents) and a primitive.
using Uses = std::vector<std::pair<std::size_t, std::size_t>>;

// The partner of each material in the other document.
struct MaterialPairs {
    std::vector<std::size_t> ofA, ofB;  // kNone: none
};

// Pairs materials of one class: first those drawn in the same places, then those drawn by the same nodes,
// then the rest in order. Each material has at most one partner.
MaterialPairs PairMaterials(const MaterialClasses& classes, const std::vector<Uses>& usesA,
                            const std::vector<Uses>& usesB);

}  // namespace zr::compare
