// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/export_node.h"

namespace zrt {

// Give a track a key at each of the times; existing keys stay. A new key has only a time and a value: between
// two keys the interpolated one (linear, or of orientations), before the first key the first one's, after the
// last key the last one's, and `rest` in an empty track:
//
//   times 0, 10, 15, 20; 10: 1, 20: 3 -> 0: 1, 10: 1, 15: 2, 20: 3
//
// Linear in keys and times if both ascend; otherwise each time is searched for from the start of the track.
void ResampleKeys(const std::vector<float>& times, std::vector<ExportPositionKey*>& keys,
                  const vl::Vector3<float>& rest);
void ResampleKeys(const std::vector<float>& times, std::vector<ExportScaleKey*>& keys,
                  const vl::Vector3<float>& rest);
void ResampleKeys(const std::vector<float>& times, std::vector<ExportRotationKey*>& keys,
                  const vl::Quaternion& rest);

// The same for a track in a host's array, which must not be null.
void ResamplePositions(const std::vector<float>& times, vl::Array* track, const vl::Vector3<float>& rest);

// Gives the three tracks of a record, creating those that are missing, keys at all of the times.
void ResampleRecord(const std::vector<float>& times, ExportNode& record);

}  // namespace zrt
