// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"

namespace zr::compare {

// Where a material is drawn: numbers that are equal for places that are the same in both documents, sorted.
using Uses = std::vector<std::pair<std::size_t, std::size_t>>;  // of a node and a primitive

// The partner of each material.
struct MaterialPairs {
    std::vector<std::size_t> ofA, ofB;  // kNone: none
};

// Materials of one class are partners when they are drawn in the same places, then when they are drawn by the
// same nodes, and what remains by its order. One is the partner of one.
MaterialPairs PairMaterials(const MaterialClasses& classes, const std::vector<Uses>& usesA,
                            const std::vector<Uses>& usesB);

}  // namespace zr::compare
