// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

inline constexpr char kTypePolyBoolean[] = "PolyBoolean";

// Boolean operations on flat polygons and their triangulation. A host offers it to modules. A polygon belongs
// to its caller until it is given to Combine or DeletePolygon. The order of functions and fields is the
// binary interface (host/api.h).
class PolyBoolean : public vl::Extension {
public:
    struct Polygon;  // a region with any number of contours; null is the empty region

    // One triangle: three corners, each a pair x, y. Returns 1.
    using TriangleCallback = int (*)(const double* a, const double* b, const double* c, void* user);

    static constexpr int kCombineLetter = 2;  // combines the region so far with the letter's next contour

    // xy: count pairs x, y of one closed contour; a repeated last point is allowed.
    virtual Polygon* CreatePolygon(int count, const double* xy) = 0;

    // Takes over both operands, each of which may be null. kCombineLetter with flag 1: contours inside one
    // another alternate between hole and island; contours whose edges cross unite when wound alike and cut
    // one another when wound against each other.
    virtual Polygon* Combine(Polygon* a, Polygon* b, int operation, int flag) = 0;

    // Reports the triangles in the units that the contours came in. Throws std::exception, having reported
    // none, for a region that it refuses, such as contours that cross thousands of times.
    virtual void Triangulate(Polygon* polygon, TriangleCallback callback, void* user) = 0;

    // Factors from contour units to the unit of the integer grid, which the extension may divide further. A
    // negative or zero factor counts by its magnitude, or as 1.
    virtual void SetScale(double sx, double sy) = 0;
    virtual void DeletePolygon(Polygon* polygon) = 0;  // null does nothing

    const char* GetTypeName() override { return kTypePolyBoolean; }
};
