// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <memory>
#include <unordered_map>
#include <vector>

#include "app/services/poly_boolean_contacts.h"

class GLUtesselator;

namespace zr {

// A point as the work sees it and as it is reported.
struct TessPoint {
    double at[3];     // whole numbers of the grid; at[2] is 0
    double units[2];  // in the contours' own units
};

// Points live in the pool that made them.
using TessLoop = std::vector<TessPoint*>;

enum class Filling {
    kOdd,      // inside an odd number of contours
    kNonZero,  // wound round at all
};

// Resolves contours of any shape into the triangles, or the outline, of what they fill. Triangles meet edge
// to edge. One thread at a time. Results throw std::bad_alloc.
class Tessellator {
public:
    Tessellator();

    // Drops all points. Grid coordinate g stands for origin + g * cell, for x and y.
    void Reset(const double (&origin)[2], const double (&cell)[2]);

    // A point of the grid with its place in units. Valid until Reset.
    TessPoint* NewPoint(GridPoint at, const double (&units)[2]);

    // The corners of the triangles, three by three, counter-clockwise.
    std::vector<TessPoint*>& Triangulate(const std::vector<TessLoop>& loops);

    // The outline of what the loops fill, as loops that do not cross but for the rounding: where the given
    // ones cross there is a new point, at the nearest place of the grid. `crossed` tells whether there is
    // any.
    std::vector<TessLoop> Outline(const std::vector<const TessLoop*>& loops, Filling filling, bool& crossed);

private:
    struct Callbacks;
    struct GridPointHash {
        std::size_t operator()(const GridPoint& p) const {
            return static_cast<std::size_t>((p.x * 0x9E3779B1) ^ (p.y * 0x85EBCA77));
        }
    };
    struct Deleter {
        void operator()(GLUtesselator* tess) const;
    };

    TessPoint* NewCrossing(TessPoint* const* ends);
    TessPoint* AtCell(GridPoint at);
    void Run(const std::vector<const TessLoop*>& loops, Filling filling, bool boundaryOnly);

    std::unique_ptr<GLUtesselator, Deleter> m_tess;
    std::deque<TessPoint> m_pool;
    double m_origin[2] = {0, 0};
    double m_cell[2] = {1, 1};
    std::vector<TessPoint*> m_corners;
    std::vector<std::size_t> m_starts;  // where each loop of an outline begins in m_corners
    // The points by their cells, once a crossing asks for it.
    std::unordered_map<GridPoint, TessPoint*, GridPointHash> m_cells;
    bool m_crossed = false;
    bool m_failed = false;
};

}  // namespace zr
