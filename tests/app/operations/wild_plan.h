// SPDX-License-Identifier: MIT
#pragma once

#include "tests/app/operations/compare/scene_plan.h"

namespace zr::test {

// A small scene with what real ones have only now and then: repeated, empty and hostile names, mirrored and
// vanishing scales, great and tiny numbers, tracks of a single key, keys that repeat each other, animations
// that move nothing, materials moved by pointer, layers, viewports. Valid all the same.
ScenePlan MakeWildPlan(Random& random);

// The same without what takes digits from single precision: numbers stay near 1 and scales near enough to it.
ScenePlan MakeLivelyPlan(Random& random);

}  // namespace zr::test
