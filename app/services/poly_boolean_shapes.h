// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace zr {

// A contour as its maker gave it.
using ContourPoints = std::vector<std::array<double, 2>>;

// A region's triangles: a corner below the number of the region's own points is one of these, counted through
// all contours; the others are points that crossing edges made, relative to the region's lower left.
struct TriangulatedShape {
    std::vector<std::uint32_t> corners;  // three by three
    std::vector<std::array<double, 2>> added;
};

// Remembers triangulations. A region that another one covers exactly when it is moved gets the triangles of
// that one, as the letters of a text that repeat do.
class ShapeCache {
public:
    // Null when no such region is known. `low` is the lower left of the contours' box.
    const TriangulatedShape* Find(const std::vector<ContourPoints>& contours,
                                  const std::array<double, 2>& low);

    // Keeps the triangulation of the region that Find was last asked for; the reference is valid until the
    // next call.
    const TriangulatedShape& Add(TriangulatedShape shape);

    void Clear();

private:
    struct Entry {
        std::vector<double> outline;
        TriangulatedShape shape;
    };

    std::vector<double> m_outline;  // of the region asked for last
    std::uint64_t m_hash = 0;
    std::unordered_map<std::uint64_t, Entry> m_entries;
    std::size_t m_size = 0;  // numbers held, all entries together
};

}  // namespace zr
