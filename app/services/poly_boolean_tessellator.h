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

// Points live in the tessellator that made them.
using TessLoop = std::vector<TessPoint*>;

// Turns contours into the triangles of what lies inside an odd number of them. Triangles meet edge to edge.
// One thread at a time.
class Tessellator {
public:
    Tessellator();

    // Drops all points. Grid coordinate g stands for origin + g * cell, for x and y.
    void Reset(const double (&origin)[2], const double (&cell)[2]);

    // A point of the grid with its place in units. Valid until Reset.
    TessPoint* NewPoint(GridPoint at, const double (&units)[2]);

    // The first point made at this place of the grid, made now when there is none.
    TessPoint* PointAt(GridPoint at);

    // The corners of the triangles, three by three, counter-clockwise; valid until the next call. The
    // contours are meant not to cross. Throws std::bad_alloc.
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
    std::unordered_map<GridPoint, TessPoint*, GridPointHash> m_cells;  // filled when first asked
    double m_origin[2] = {0, 0};
    double m_cell[2] = {1, 1};
    std::vector<TessPoint*> m_corners;
    bool m_failed = false;
};

}  // namespace zr
