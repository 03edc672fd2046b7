// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/compare/content.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Adds a line for each difference in what the documents hold apart from what is drawn and moves: nodes and
// what they carry, names, materials, scenes, animations, data of the whole. valueTolerance: of times,
// relative to the greater one and 1. Afterwards `content`, which adds lines of its own, knows what was
// compared with what.
void CompareStructure(const ScenePair& pair, double valueTolerance, ContentComparison& content,
                      std::vector<std::string>& lines);

}  // namespace zr::compare
