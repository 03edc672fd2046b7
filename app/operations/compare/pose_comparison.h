// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/compare/compare_result.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Compares the faces that are drawn at rest and, where all nodes are paired, in a pose that moves every joint
// and morph target; results `faces`, `point` and `drawn`. The evaluators stand at rest before and after.
void ComparePoses(ScenePair& pair, CompareResult& result);

}  // namespace zr::compare
