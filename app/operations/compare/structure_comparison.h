// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/compare/content_comparison.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Adds a line for each difference that is neither drawn nor moves: nodes and their content, names, materials,
// scenes, animations, and data of the whole document. valueTolerance: of times, relative to the end time, at
// least 1. Afterwards `content`, which adds its own lines, knows which elements match.
void CompareStructure(const ScenePair& pair, double valueTolerance, ContentComparison& content,
                      std::vector<std::string>& lines);

}  // namespace zr::compare
