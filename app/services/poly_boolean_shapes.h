// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace zr {

// The points of a contour, as given to CreatePolygon.
using ContourPoints = std::vector<std::array<double, 2>>;

// A region's triangles. Corners number the region's own points through all contours, then those of `added`:
// points where edges cross, relative to the region's lower left.
struct TriangulatedShape {
    std::vector<std::uint32_t> corners;  // three by three
    std::vector<std::array<double, 2>> added;
};

// Caches triangulations. Regions that differ only by a translation, such as repeated letters of a text, share
// one.
class ShapeCache {
public:
    // Null when no such region is known. `low` is the lower left of the contours' box.
    const TriangulatedShape* Find(const std::vector<ContourPoints>& contours,
                                  const std::array<double, 2>& low);

    // Stores the triangulation of the region last passed to Find; the reference is valid until the next call.
    const TriangulatedShape& Add(TriangulatedShape shape);

    void Clear();

private:
    struct Entry {
        std::vector<double> outline;
        TriangulatedShape shape;
    };

    std::vector<double> m_outline;  // of the region last passed to Find
    std::uint64_t m_hash = 0;
    std::unordered_map<std::uint64_t, Entry> m_entries;
    std::size_t m_size = 0;  // numbers held, all entries together
};

}  // namespace zr
