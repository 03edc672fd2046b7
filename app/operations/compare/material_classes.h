// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

#include "app/operations/compare/drawn_comparison.h"
#include "gltf/document.h"

namespace zr::compare {

struct MaterialMatching {
    MaterialClasses classes;  // of the first document: the number of a material of it
    // Materials of one class whose content is not equal to the letter.
    std::vector<std::pair<std::size_t, std::size_t>> different;
};

// Materials are the same when their content and names are equal; of the rest, those of equal content, then
// those of equal names, then the last one left on both sides.
MaterialMatching MatchMaterials(const gltf::Document& a, const gltf::Document& b);

}  // namespace zr::compare
