// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include "app/operations/compare/compare_result.h"
#include "app/operations/compare/content.h"
#include "app/operations/compare/scene_pair.h"

namespace zr::compare {

// Compares the pose at rest and what paired animations do to nodes, views and values and, where points are to
// be compared, to faces; results `times`, `node`, `axis`, `view`, `value` and `movedPoint`. content: which
// elements pointers lead to. The evaluators stand at rest before and after. progress: from 0 to 1.
void CompareMotion(ScenePair& pair, const ContentComparison& content,
                   const std::function<void(double done)>& progress, CompareResult& result);

}  // namespace zr::compare
