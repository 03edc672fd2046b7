// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <stdexcept>
#include <vector>

namespace zr {

// A point of the integer grid. Coordinates lie within 2^30 of each other, so that the products of the
// predicates fit 64 bits.
struct GridPoint {
    std::int64_t x;
    std::int64_t y;
    friend bool operator==(const GridPoint&, const GridPoint&) = default;
};

// A closed contour of at least three points, no point equal to the next one, the last not equal to the first.
using GridLoop = std::vector<GridPoint>;

// Contours that cross so often, or of which so much lies side by side, that uniting or filling them would
// take minutes. The bound is some fifty times what letters reach; at it, a contour takes less than a second.
struct TooIntricate : std::runtime_error {
    TooIntricate() : std::runtime_error("contours cross too often") {}
};

// Finds which contours cross one another or themselves: edges that cut through each other, run along each
// other, or pass through a common point from one side to the other. Touching at a point without passing is
// not a crossing. Exact.
//
// The result holds, for each loop, the number of its group: loops that cross share the smallest number among
// them; kApart for a loop that crosses nothing.
//
//   outer and hole of an O        kApart, kApart
//   two strokes of an X           0, 0
//
// Throws TooIntricate.
inline constexpr int kApart = -1;
std::vector<int> CrossingGroups(const std::vector<GridLoop>& loops);

}  // namespace zr
