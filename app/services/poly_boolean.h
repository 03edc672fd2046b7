// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "host/poly_boolean.h"

namespace zr {

// The host's polygon extension. Polygons keep their contours as given; the region they make is resolved when
// it is triangulated, so that combining does no geometry. One thread at a time.
class PolyBooleanExtension final : public PolyBoolean {
public:
    PolyBooleanExtension();
    ~PolyBooleanExtension() override;

    // Null for a contour without points, or with a coordinate that is not finite or exceeds 1e150.
    Polygon* CreatePolygon(int count, const double* xy) override;

    // An operation or flag other than kCombineLetter and 1 yields null, the empty region.
    Polygon* Combine(Polygon* a, Polygon* b, int operation, int flag) override;

    // Throws TooIntricate (poly_boolean_contacts.h) for a region that would take minutes.
    void Triangulate(Polygon* polygon, TriangleCallback callback, void* user) override;
    void SetScale(double sx, double sy) override;
    void DeletePolygon(Polygon* polygon) override;

private:
    struct Workspace;

    void DeleteThis() override { delete this; }

    double m_scale[2] = {1, 1};
    std::unique_ptr<Workspace> m_workspace;
};

}  // namespace zr
