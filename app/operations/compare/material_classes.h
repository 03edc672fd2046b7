// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"
#include "gltf/document.h"

namespace zr::compare {

struct MaterialMatching {
    MaterialClasses classes;  // a class is the index of a material of the first document, or beyond
    // Matched materials that differ in content or name.
    std::vector<std::pair<std::size_t, std::size_t>> different;
};

// Matches materials of equal content and name; of the rest, those of equal content, then those of equal name,
// then the last one if exactly one is left on each side.
MaterialMatching MatchMaterials(const gltf::Document& a, const gltf::Document& b);

}  // namespace zr::compare
