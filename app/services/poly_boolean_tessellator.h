// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "app/services/poly_boolean_contacts.h"

class GLUtesselator;

namespace zr {

struct TessPoint {
    double at[3];  // whole numbers of the grid; at[2] is 0
    std::uint32_t number;
};

// Its points belong to the tessellator that made them.
using TessLoop = std::vector<TessPoint*>;

// Triangulates the region inside an odd number of contours. Triangles meet edge to edge. One thread at a
// time.
class Tessellator {
public:
    Tessellator();

    // Drops all points. Points that crossing edges make are numbered from `firstAdded` on.
    void Reset(std::uint32_t firstAdded);

    // Valid until Reset.
    TessPoint* NewPoint(GridPoint at, std::uint32_t number);

    // The first point made at this grid cell; adds one if there is none.
    TessPoint* PointAt(GridPoint at);

    // The points that PointAt added, in the order of their numbers.
    const std::vector<GridPoint>& Added() const { return m_added; }

    // The corners of the triangles, three by three, counter-clockwise; valid until the next call. The
    // contours should not cross. Throws std::bad_alloc.
    std::vector<TessPoint*>& Triangulate(const std::vector<TessLoop>& loops);

private:
    struct Callbacks;
    struct Deleter {
        void operator()(GLUtesselator* tess) const;
    };
    struct GridPointHash {
        std::size_t operator()(GridPoint p) const {
            return static_cast<std::size_t>((p.x * 0x9E3779B1) ^ (p.y * 0x85EBCA77));
        }
    };

    void DropCollapsed();

    std::unique_ptr<GLUtesselator, Deleter> m_tess;
    std::deque<TessPoint> m_pool;
    std::unordered_map<GridPoint, TessPoint*, GridPointHash> m_cells;  // filled on first use
    std::uint32_t m_firstAdded = 0;
    std::vector<GridPoint> m_added;
    std::vector<TessPoint*> m_corners;
    bool m_failed = false;
};

}  // namespace zr
