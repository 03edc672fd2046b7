// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/compare/compare_result.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Compares the faces drawn at rest and, if all nodes are paired, in a pose that moves every joint and morph
// target. Sets `faces`, `point` and `drawn` of the result. The evaluators are at rest before and after.
void ComparePoses(ScenePair& pair, CompareResult& result);

}  // namespace zr::compare
