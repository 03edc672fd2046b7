// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/export_node.h"

namespace zrt {

// Give a track a key at every one of the times; the keys it has stay. A new key holds a time and a value:
// between two keys the interpolated one (linear, or of orientations), before the first key the first one's,
// after the last key the last one's, and `rest` in an empty track:
//
//   times 0, 10, 15, 20; 10: 1, 20: 3 -> 0: 1, 10: 1, 15: 2, 20: 3
//
// Linear in keys and times as long as both ascend; else each time is looked for from the track's start.
void ResampleKeys(const std::vector<float>& times, std::vector<ExportPositionKey*>& keys,
                  const vl::Vector3<float>& rest);
void ResampleKeys(const std::vector<float>& times, std::vector<ExportScaleKey*>& keys,
                  const vl::Vector3<float>& rest);
void ResampleKeys(const std::vector<float>& times, std::vector<ExportRotationKey*>& keys,
                  const vl::Quaternion& rest);

// The same for a track as the host's array, which is not null.
void ResamplePositions(const std::vector<float>& times, vl::Array* track, const vl::Vector3<float>& rest);

// Gives the three tracks of a record, which are made where they are missing, keys at all of the times.
void ResampleRecord(const std::vector<float>& times, ExportNode& record);

}  // namespace zrt
