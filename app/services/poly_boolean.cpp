// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <utility>

#include "app/services/poly_boolean_contacts.h"
#include "app/services/poly_boolean_flips.h"
#include "app/services/poly_boolean_shapes.h"
#include "app/services/poly_boolean_tessellator.h"
#include "app/services/poly_boolean_unite.h"

struct PolyBoolean::Polygon {
    std::vector<zr::ContourPoints> contours;
};

namespace zr {
namespace {

constexpr double kLargestCoordinate = 1e150;

// Fine enough for a letter of a long text, which spans few scaled units, to keep its shape. A text of 2^18
// units uses half the range of the exact predicates.
constexpr double kCellsPerUnit = 2048;
constexpr double kLargestCell = 0x3FFFFFFF;

using Point = std::array<double, 2>;

struct Box {
    Point low = {kLargestCoordinate, kLargestCoordinate};
    Point high = {-kLargestCoordinate, -kLargestCoordinate};
};

Box BoxOf(const std::vector<ContourPoints>& contours) {
    Box box;
    for (const ContourPoints& contour : contours) {
        for (const Point& point : contour) {
            for (std::size_t axis = 0; axis < 2; ++axis) {
                box.low[axis] = std::min(box.low[axis], point[axis]);
                box.high[axis] = std::max(box.high[axis], point[axis]);
            }
        }
    }
    return box;
}

// Cells per contour unit along an axis of the given extent.
double CellsFor(double scale, double extent) {
    return std::min(scale * kCellsPerUnit, kLargestCell / std::max(extent, 1e-150));
}

}  // namespace

struct PolyBooleanExtension::Workspace {
    Tessellator tessellator;
    std::vector<GridLoop> gridLoops;
    std::vector<TessLoop> loops;
    ShapeCache shapes;
    std::vector<std::array<double, 2>> points;  // of a shape, in the contours' units

    TriangulatedShape Triangulate(const Polygon& polygon, const Box& box, const double (&scale)[2]);
    void AddContour(const ContourPoints& contour, std::uint32_t number, const Point& origin,
                    const Point& cells);
    void PlacePoints(const Polygon& polygon, const TriangulatedShape& shape, const Point& origin);
};

TriangulatedShape PolyBooleanExtension::Workspace::Triangulate(const Polygon& polygon, const Box& box,
                                                               const double (&scale)[2]) {
    const Point cells = {CellsFor(scale[0], box.high[0] - box.low[0]),
                         CellsFor(scale[1], box.high[1] - box.low[1])};
    std::size_t count = 0;
    for (const ContourPoints& contour : polygon.contours) count += contour.size();
    tessellator.Reset(static_cast<std::uint32_t>(count));
    gridLoops.clear();
    loops.clear();
    std::uint32_t number = 0;
    for (const ContourPoints& contour : polygon.contours) {
        AddContour(contour, number, box.low, cells);
        number += static_cast<std::uint32_t>(contour.size());
    }
    if (UniteCrossing(gridLoops)) {
        loops.clear();
        for (const GridLoop& grid : gridLoops) {
            TessLoop& loop = loops.emplace_back();
            for (const GridPoint at : grid) loop.push_back(tessellator.PointAt(at));
        }
    }
    std::vector<TessPoint*>& corners = tessellator.Triangulate(loops);
    FlipFlatTriangles(corners);

    TriangulatedShape shape;
    for (const TessPoint* corner : corners) shape.corners.push_back(corner->number);
    const Point cell = {1 / cells[0], 1 / cells[1]};
    for (const GridPoint at : tessellator.Added())
        shape.added.push_back({static_cast<double>(at.x) * cell[0], static_cast<double>(at.y) * cell[1]});
    return shape;
}

// Consecutive points on one grid cell become one; a contour left with fewer than three is dropped.
void PolyBooleanExtension::Workspace::AddContour(const ContourPoints& contour, std::uint32_t number,
                                                 const Point& origin, const Point& cells) {
    GridLoop grid;
    TessLoop loop;
    for (const Point& point : contour) {
        const std::uint32_t own = number++;
        const GridPoint at{std::llround((point[0] - origin[0]) * cells[0]),
                           std::llround((point[1] - origin[1]) * cells[1])};
        if (!grid.empty() && grid.back() == at) continue;
        grid.push_back(at);
        loop.push_back(tessellator.NewPoint(at, own));
    }
    while (grid.size() > 1 && grid.back() == grid.front()) {
        grid.pop_back();
        loop.pop_back();
    }
    if (grid.size() < 3) return;
    gridLoops.push_back(std::move(grid));
    loops.push_back(std::move(loop));
}

void PolyBooleanExtension::Workspace::PlacePoints(const Polygon& polygon, const TriangulatedShape& shape,
                                                  const Point& origin) {
    points.clear();
    for (const ContourPoints& contour : polygon.contours)
        points.insert(points.end(), contour.begin(), contour.end());
    for (const Point& offset : shape.added) points.push_back({origin[0] + offset[0], origin[1] + offset[1]});
}

PolyBooleanExtension::PolyBooleanExtension() : m_workspace(std::make_unique<Workspace>()) {}

PolyBooleanExtension::~PolyBooleanExtension() = default;

PolyBoolean::Polygon* PolyBooleanExtension::CreatePolygon(int count, const double* xy) {
    if (count <= 0) return nullptr;
    const bool isUsable = std::all_of(xy, xy + 2 * static_cast<std::ptrdiff_t>(count),
                                      [](double v) { return std::abs(v) <= kLargestCoordinate; });
    if (!isUsable) return nullptr;
    auto polygon = std::make_unique<Polygon>();
    ContourPoints& contour = polygon->contours.emplace_back();
    contour.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i, xy += 2) contour.push_back({xy[0], xy[1]});
    return polygon.release();
}

PolyBoolean::Polygon* PolyBooleanExtension::Combine(Polygon* a, Polygon* b, int operation, int flag) {
    std::unique_ptr<Polygon> region(a);
    std::unique_ptr<Polygon> contour(b);
    if (operation != kCombineLetter || flag != 1) return nullptr;
    if (!region) return contour.release();
    if (contour) {
        std::move(contour->contours.begin(), contour->contours.end(), std::back_inserter(region->contours));
    }
    return region.release();
}

void PolyBooleanExtension::Triangulate(Polygon* polygon, TriangleCallback callback, void* user) {
    if (!polygon) return;
    Workspace& work = *m_workspace;
    const Box box = BoxOf(polygon->contours);
    const TriangulatedShape* shape = work.shapes.Find(polygon->contours, box.low);
    if (!shape) shape = &work.shapes.Add(work.Triangulate(*polygon, box, m_scale));
    work.PlacePoints(*polygon, *shape, box.low);
    for (std::size_t i = 0; i + 2 < shape->corners.size(); i += 3) {
        const auto corner = [&](std::size_t k) { return work.points[shape->corners[i + k]].data(); };
        callback(corner(0), corner(1), corner(2), user);
    }
}

void PolyBooleanExtension::SetScale(double sx, double sy) {
    const auto usable = [](double s) { return std::isnormal(s) ? std::abs(s) : 1.0; };
    m_scale[0] = usable(sx);
    m_scale[1] = usable(sy);
    m_workspace->shapes.Clear();
}

void PolyBooleanExtension::DeletePolygon(Polygon* polygon) {
    delete polygon;
}

}  // namespace zr
