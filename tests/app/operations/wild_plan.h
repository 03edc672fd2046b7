// SPDX-License-Identifier: MIT
#pragma once

#include "tests/app/operations/compare/scene_plan.h"

namespace zr::test {

// A small valid scene with features that are rare in real ones: duplicate, empty and hostile names, mirrored
// and vanishing scales, huge and tiny numbers, tracks with a single key, repeated keys, animations that move
// nothing, materials animated by pointer, layers, viewports.
ScenePlan MakeWildPlan(Random& random);

// The same without loss of precision in floats: numbers and scales stay near 1.
ScenePlan MakeLivelyPlan(Random& random);

}  // namespace zr::test
