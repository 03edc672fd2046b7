// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "app/operations/compare/compare_result.h"
#include "app/operations/compare/content_comparison.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Compares the rest pose, and how paired animations move nodes, views, values and (for Aspect::kPoints)
// faces. Sets `times`, `node`, `axis`, `view`, `value` and `movedPoint` of the result. content: knows which
// elements match. The evaluators are at rest before and after. progress: called with values from 0 to 1.
void CompareMotion(ScenePair& pair, const ContentComparison& content,
                   const std::function<void(double done)>& progress, CompareResult& result);

}  // namespace zr::compare
