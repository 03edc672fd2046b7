// SPDX-License-Identifier: MIT
#include "app/operations/text/text_geometry.h"

#include <algorithm>

namespace zr {

TextBox BoxOf(std::span<const TextGeometry::Point> points) {
    if (points.empty()) return {};
    TextBox box{points[0], points[0]};
    for (const TextGeometry::Point& p : points) {
        box.low = {std::min(box.low.x, p.x), std::min(box.low.y, p.y), std::min(box.low.z, p.z)};
        box.high = {std::max(box.high.x, p.x), std::max(box.high.y, p.y), std::max(box.high.z, p.z)};
    }
    return box;
}

}  // namespace zr
