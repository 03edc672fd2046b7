// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <utility>
#include <vector>

#include "host/math.h"

namespace zrt {

// Width and height of the box around the points. (-2e25, -2e25) without points, since the extremes start at
// 1e25, the wrong way round.
inline std::pair<float, float> Extent(const std::vector<vl::Vector3<float>>& points) {
    float minX = 1e25f, minY = 1e25f, maxX = -1e25f, maxY = -1e25f;
    for (const vl::Vector3<float>& point : points) {
        minX = std::min(minX, point.x);
        maxX = std::max(maxX, point.x);
        minY = std::min(minY, point.y);
        maxY = std::max(maxY, point.y);
    }
    return {maxX - minX, maxY - minY};
}

}  // namespace zrt
