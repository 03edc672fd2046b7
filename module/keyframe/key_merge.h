// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/export_node.h"

namespace zrt {

// Delete the keys that add nothing to a track; the others keep their order and values. Linear in the keys.
//
// A key is deleted if each component of its value equals, to the bit, the straight line between its
// neighbours, or if these have the same time; the first such key goes first, and its neighbours are examined
// again. If two keys are left, the second is deleted if it equals the first:
//
//   0: 0, 10: 1, 20: 2, 30: 5 -> 0: 0, 20: 2, 30: 5        0: 7, 10: 7, 20: 7 -> 0: 7
void MergeKeys(std::vector<ExportPositionKey*>& keys);
void MergeKeys(std::vector<ExportScaleKey*>& keys);
void MergeQuaternionKeys(std::vector<ExportRotationKey*>& keys);

// Likewise for keys with steps: deletes each one with an angle of exactly 0.0 that is later than the key
// before it.
void MergeAngleAxisKeys(std::vector<ExportRotationKey*>& keys);

}  // namespace zrt
