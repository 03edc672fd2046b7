// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <utility>

#include "app/services/poly_boolean_contacts.h"
#include "app/services/poly_boolean_flips.h"
#include "app/services/poly_boolean_tessellator.h"
#include "app/services/poly_boolean_unite.h"

struct PolyBoolean::Polygon {
    std::vector<std::vector<std::array<double, 2>>> contours;
};

namespace zr {
namespace {

constexpr double kLargestCoordinate = 1e150;

// The grid divides a scaled unit this many times, so that a letter of a long text, which is given few units,
// keeps its shape. A text given 2^18 units fills half of what the exact predicates can hold.
constexpr double kCellsPerUnit = 2048;
constexpr double kLargestCell = 0x3FFFFFFF;

// Cells per contour unit along an axis of the given extent.
double CellsFor(double scale, double extent) {
    return std::min(scale * kCellsPerUnit, kLargestCell / std::max(extent, 1e-150));
}

}  // namespace

struct PolyBooleanExtension::Workspace {
    Tessellator tessellator;
    std::vector<GridLoop> gridLoops;
    std::vector<TessLoop> loops;

    void Load(const Polygon& polygon, const double (&scale)[2]);
    void AddContour(const std::vector<std::array<double, 2>>& contour, const double (&origin)[2],
                    const double (&cells)[2]);
};

void PolyBooleanExtension::Workspace::Load(const Polygon& polygon, const double (&scale)[2]) {
    double low[2] = {kLargestCoordinate, kLargestCoordinate};
    double high[2] = {-kLargestCoordinate, -kLargestCoordinate};
    for (const auto& contour : polygon.contours) {
        for (const auto& point : contour) {
            for (int axis = 0; axis < 2; ++axis) {
                low[axis] = std::min(low[axis], point[axis]);
                high[axis] = std::max(high[axis], point[axis]);
            }
        }
    }
    const double cells[2] = {CellsFor(scale[0], high[0] - low[0]), CellsFor(scale[1], high[1] - low[1])};
    tessellator.Reset(low, {1 / cells[0], 1 / cells[1]});
    gridLoops.clear();
    loops.clear();
    for (const auto& contour : polygon.contours) AddContour(contour, low, cells);
    if (!UniteCrossing(gridLoops)) return;
    loops.clear();
    for (const GridLoop& grid : gridLoops) {
        TessLoop& loop = loops.emplace_back();
        for (const GridPoint at : grid) loop.push_back(tessellator.PointAt(at));
    }
}

// Points that fall on one cell in a row are one point; what is left of less than three fills nothing.
void PolyBooleanExtension::Workspace::AddContour(const std::vector<std::array<double, 2>>& contour,
                                                 const double (&origin)[2], const double (&cells)[2]) {
    GridLoop grid;
    TessLoop loop;
    for (const auto& point : contour) {
        const GridPoint at{std::llround((point[0] - origin[0]) * cells[0]),
                           std::llround((point[1] - origin[1]) * cells[1])};
        if (!grid.empty() && grid.back() == at) continue;
        grid.push_back(at);
        loop.push_back(tessellator.NewPoint(at, {point[0], point[1]}));
    }
    while (grid.size() > 1 && grid.back() == grid.front()) {
        grid.pop_back();
        loop.pop_back();
    }
    if (grid.size() < 3) return;
    gridLoops.push_back(std::move(grid));
    loops.push_back(std::move(loop));
}

PolyBooleanExtension::PolyBooleanExtension() : m_workspace(std::make_unique<Workspace>()) {}

PolyBooleanExtension::~PolyBooleanExtension() = default;

PolyBoolean::Polygon* PolyBooleanExtension::CreatePolygon(int count, const double* xy) {
    if (count <= 0) return nullptr;
    const bool isUsable = std::all_of(xy, xy + 2 * static_cast<std::ptrdiff_t>(count),
                                      [](double v) { return std::abs(v) <= kLargestCoordinate; });
    if (!isUsable) return nullptr;
    auto polygon = std::make_unique<Polygon>();
    auto& contour = polygon->contours.emplace_back();
    for (int i = 0; i < count; ++i) contour.push_back({xy[2 * i], xy[2 * i + 1]});
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
    work.Load(*polygon, m_scale);
    std::vector<TessPoint*>& corners = work.tessellator.Triangulate(work.loops);
    FlipFlatTriangles(corners);
    for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
        callback(corners[i]->units, corners[i + 1]->units, corners[i + 2]->units, user);
    }
}

void PolyBooleanExtension::SetScale(double sx, double sy) {
    const auto usable = [](double s) { return std::isnormal(s) ? std::abs(s) : 1.0; };
    m_scale[0] = usable(sx);
    m_scale[1] = usable(sy);
}

void PolyBooleanExtension::DeletePolygon(Polygon* polygon) {
    delete polygon;
}

}  // namespace zr
