// SPDX-License-Identifier: MIT
#include "app/services/poly_boolean.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <random>
#include <vector>

#include "app/services/poly_boolean_contacts.h"
#include "tests/base/rounds.h"

namespace {

using Point = std::array<double, 2>;
using Contour = std::vector<Point>;
using Triangle = std::array<Point, 3>;

double Cross(Point o, Point a, Point b) {
    return (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0]);
}

std::vector<Triangle> Fill(PolyBoolean& engine, const std::vector<Contour>& contours) {
    PolyBoolean::Polygon* region = nullptr;
    for (const Contour& contour : contours) {
        region = engine.Combine(
            region, engine.CreatePolygon(static_cast<int>(contour.size()), contour.data()->data()),
            PolyBoolean::kCombineLetter, 1);
    }
    std::vector<Triangle> triangles;
    const auto collect = [](const double* a, const double* b, const double* c, void* user) {
        static_cast<std::vector<Triangle>*>(user)->push_back({{{a[0], a[1]}, {b[0], b[1]}, {c[0], c[1]}}});
        return 1;
    };
    engine.Triangulate(region, collect, &triangles);
    engine.DeletePolygon(region);
    return triangles;
}

std::vector<Triangle> Fill(const std::vector<Contour>& contours, double scale = 1) {
    const auto engine = vl::Ref<PolyBoolean>::Adopt(new zr::PolyBooleanExtension);
    engine->SetScale(scale, scale);
    return Fill(*engine, contours);
}

double Area(const std::vector<Triangle>& triangles) {
    double area = 0;
    for (const Triangle& t : triangles) area += Cross(t[0], t[1], t[2]) / 2;
    return area;
}

// Triangles are counter-clockwise and meet edge to edge, with no corner inside another's edge. Where edges
// cross, rounding to the grid may distort a triangle by `slack`.
void ExpectSound(const std::vector<Triangle>& triangles, double slack = 0) {
    std::map<std::pair<Point, Point>, int> edges;
    for (const Triangle& t : triangles) {
        EXPECT_GE(Cross(t[0], t[1], t[2]), -slack);
        for (int i = 0; i < 3; ++i) ++edges[{t[i], t[(i + 1) % 3]}];
    }
    for (const auto& [edge, uses] : edges) {
        EXPECT_EQ(uses, 1);
        const auto& [a, b] = edge;
        const double length = std::hypot(b[0] - a[0], b[1] - a[1]);
        for (const Triangle& t : triangles) {
            for (const Point p : t) {
                const double along = ((p[0] - a[0]) * (b[0] - a[0]) + (p[1] - a[1]) * (b[1] - a[1])) / length;
                const double off = std::abs(Cross(a, b, p)) / length;
                const bool isWithin = along > 1e-6 && along < length - 1e-6 && off < 1e-7;
                // Allowed only on the rim, where nothing lies on the other side.
                EXPECT_FALSE(isWithin && edges.contains({b, a}))
                    << p[0] << " " << p[1] << " on " << a[0] << " " << a[1] << " to " << b[0] << " " << b[1];
            }
        }
    }
}

const Contour kSquare = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};

Contour Box(double x0, double y0, double x1, double y1) {
    return {{x0, y0}, {x1, y0}, {x1, y1}, {x0, y1}};
}

Contour Reversed(Contour contour) {
    std::reverse(contour.begin(), contour.end());
    return contour;
}

struct Case {
    const char* name;
    std::vector<Contour> contours;
    double area;
    std::size_t triangles;  // at most
};

TEST(PolyBoolean, FillsLettersAsIntended) {
    const Contour bowTie = {{0, 0}, {4, 4}, {4, 0}, {0, 4}};
    const Contour loop = {{0, 0}, {8, 0}, {8, 6}, {2, 6}, {2, 4}, {6, 4}, {6, 2}, {4, 2}, {4, 8}, {0, 8}};
    const std::vector<Case> cases = {
        {"a square", {kSquare}, 100, 2},
        {"closed by its first point", {{{0, 0}, {10, 0}, {10, 10}, {0, 10}, {0, 0}}}, 100, 2},
        {"repeated points", {{{0, 0}, {0, 0}, {10, 0}, {10, 10}, {10, 10}, {0, 10}}}, 100, 2},
        {"a hole wound against it", {kSquare, Reversed(Box(2, 2, 8, 8))}, 64, 8},
        {"a hole wound alike", {kSquare, Box(2, 2, 8, 8)}, 64, 8},
        {"the hole first", {Box(2, 2, 8, 8), kSquare}, 64, 8},
        {"an island in a hole", {kSquare, Box(2, 2, 8, 8), Box(4, 4, 6, 6)}, 68, 10},
        {"two holes", {kSquare, Box(1, 1, 4, 4), Box(6, 6, 9, 9)}, 82, 14},
        {"letters apart", {kSquare, Box(20, 0, 30, 10)}, 200, 4},
        {"strokes that cross, wound alike", {Box(0, 4, 10, 6), Box(4, 0, 6, 10)}, 36, 10},
        {"strokes that cross, wound against", {Box(0, 4, 10, 6), Reversed(Box(4, 0, 6, 10))}, 32, 8},
        {"strokes that cross in corners", {Box(0, 0, 4, 4), {{2, 2}, {6, 6}, {2, 9}, {-2, 6}}}, 40, 5},
        {"a bow tie", {bowTie}, 8, 2},
        {"a stroke over itself", {loop}, 52, 14},
        {"the same contour twice", {kSquare, kSquare}, 100, 2},
        {"the same contour there and back", {kSquare, Reversed(kSquare)}, 0, 0},
        {"strokes side by side", {Box(0, 0, 4, 10), Box(4, 2, 8, 6)}, 56, 6},
        {"a stroke inside, flush with an edge", {kSquare, Box(0, 2, 4, 6)}, 100, 6},
        {"a notch flush with an edge", {kSquare, Reversed(Box(0, 2, 4, 6))}, 84, 6},
        {"a hole that touches a corner", {kSquare, {{0, 0}, {4, 2}, {2, 4}}}, 94, 7},
        {"a hole that touches an edge", {kSquare, {{5, 0}, {7, 3}, {3, 3}}}, 94, 7},
        {"a spike", {{{0, 0}, {10, 0}, {10, 5}, {15, 5}, {10, 5}, {10, 10}, {0, 10}}}, 100, 3},
        {"points on a line", {{{0, 0}, {5, 5}, {9, 9}}}, 0, 0},
        {"collinear points on the rim", {{{0, 0}, {5, 0}, {10, 0}, {10, 10}, {5, 10}, {0, 10}}}, 100, 4},
        {"one point", {{{3, 3}}}, 0, 0},
        {"a point that is no number", {kSquare, {{0, 0}, {NAN, 1}, {1, 1}}}, 100, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        // The work does not depend on where the text stands or how fine its units are.
        for (const double scale : {1.0, 1000.0, 0.01, -3.0, 0.0}) {
            const std::vector<Triangle> triangles = Fill(c.contours, scale);
            EXPECT_NEAR(Area(triangles), c.area, 0.2);
            EXPECT_LE(triangles.size(), c.triangles);
            ExpectSound(triangles);
        }
    }
}

TEST(PolyBoolean, ReportsTheCornersItWasGiven) {
    const Contour odd = {{1.0 / 3, 1e6 + 1.0 / 7}, {20.1, 1e6}, {17.7, 1e6 + 31.3}};
    const std::vector<Triangle> triangles = Fill({odd}, 0.37);
    ASSERT_EQ(triangles.size(), 1u);
    for (const Point p : triangles[0]) EXPECT_TRUE(std::find(odd.begin(), odd.end(), p) != odd.end());
}

// Cached regions do not affect later ones: the same region elsewhere, one of as many points, one with its
// points divided differently into contours, or one at another scale.
TEST(PolyBoolean, FillsARegionAsIfItWereTheFirst) {
    const auto engine = vl::Ref<PolyBoolean>::Adopt(new zr::PolyBooleanExtension);
    const std::vector<std::vector<Contour>> regions = {
        {kSquare, Box(2, 2, 8, 8)},
        {Box(64, 32, 74, 42), Box(66, 34, 72, 40)},
        {kSquare, Box(2, 2, 8, 7)},
        {Box(0, 4, 10, 6), {{3.3, 0}, {6, 0}, {6, 10}}},
        {Box(256, 260, 266, 262), {{259.3, 256}, {262, 256}, {262, 266}}},
        {{{0, 4}, {10, 4}, {10, 6}}, {{0, 6}, {3, 0}, {6, 0}, {6, 10}}},
    };
    for (const double scale : {1.0, 0.001, 0.001, 300.0}) {
        engine->SetScale(scale, scale);
        for (int round = 0; round < 2; ++round) {
            for (const std::vector<Contour>& region : regions)
                EXPECT_EQ(Fill(*engine, region), Fill(region, scale));
        }
    }
}

TEST(PolyBoolean, AcceptsTheEmptyRegion) {
    const auto engine = vl::Ref<PolyBoolean>::Adopt(new zr::PolyBooleanExtension);
    EXPECT_EQ(engine->CreatePolygon(0, nullptr), nullptr);
    EXPECT_EQ(engine->Combine(nullptr, nullptr, PolyBoolean::kCombineLetter, 1), nullptr);
    engine->Triangulate(nullptr, nullptr, nullptr);
    engine->DeletePolygon(nullptr);
    const double xy[] = {0, 0, 1, 0, 1, 1};
    EXPECT_EQ(engine->Combine(engine->CreatePolygon(3, xy), engine->CreatePolygon(3, xy), 7, 1), nullptr);
    EXPECT_TRUE(engine->IsTypeOf("polyboolean"));
}

int Winding(const Contour& contour, Point p) {
    int winding = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const Point a = contour[i];
        const Point b = contour[(i + 1) % contour.size()];
        if (a[1] <= p[1] && b[1] > p[1] && Cross(a, b, p) > 0) ++winding;
        if (a[1] > p[1] && b[1] <= p[1] && Cross(a, b, p) < 0) --winding;
    }
    return winding;
}

int Cover(const std::vector<Triangle>& triangles, Point p) {
    return static_cast<int>(std::count_if(triangles.begin(), triangles.end(), [&](const Triangle& t) {
        return Cross(t[0], t[1], p) > 0 && Cross(t[1], t[2], p) > 0 && Cross(t[2], t[0], p) > 0;
    }));
}

// Contours on a coarse lattice, where everything touches, overlaps, repeats and crosses in corners.
TEST(PolyBoolean, CoversEveryPointOnceOrNotAtAll) {
    std::mt19937 random(7);
    const auto pick = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
    for (unsigned round = 0; round < zr::test::Rounds(2000); ++round) {
        SCOPED_TRACE(round);
        std::vector<Contour> contours(static_cast<std::size_t>(1 + pick(4)));
        std::vector<zr::GridLoop> loops;
        for (Contour& contour : contours) {
            const int count = 3 + pick(6);
            zr::GridLoop loop;
            while (static_cast<int>(loop.size()) < count) {
                const zr::GridPoint p{pick(7), pick(7)};
                if (!loop.empty() && (loop.back() == p || loop.front() == p)) continue;
                loop.push_back(p);
                contour.push_back({static_cast<double>(p.x), static_cast<double>(p.y)});
            }
            loops.push_back(loop);
        }
        const std::vector<int> groups = zr::CrossingGroups(loops);
        const std::vector<Triangle> triangles = Fill(contours, 100);
        ExpectSound(triangles, 1e-4);
        for (int sample = 0; sample < 40; ++sample) {
            const Point p = {(pick(700) + 0.37) / 100, (pick(700) + 0.73) / 100};
            std::map<int, int> windings;
            int inside = 0;
            for (std::size_t i = 0; i < contours.size(); ++i) {
                if (groups[i] == zr::kApart) {
                    inside += Winding(contours[i], p) & 1;
                } else {
                    windings[groups[i]] += Winding(contours[i], p);
                }
            }
            for (const auto& [group, winding] : windings) inside += winding != 0;
            EXPECT_EQ(Cover(triangles, p), inside & 1) << p[0] << " " << p[1];
        }
        if (HasFailure()) break;
    }
}

TEST(CrossingGroups, DistinguishesCrossingFromTouching) {
    using zr::GridLoop;
    using zr::kApart;
    const GridLoop square = {{0, 0}, {10, 0}, {10, 10}, {0, 10}};
    const auto groups = [&](const GridLoop& other) { return zr::CrossingGroups({square, other}); };
    const std::vector<int> apart = {kApart, kApart};
    const std::vector<int> together = {0, 0};
    EXPECT_EQ(groups({{2, 2}, {8, 2}, {5, 8}}), apart) << "inside";
    EXPECT_EQ(groups({{5, 5}, {15, 5}, {15, 7}}), together) << "through an edge";
    EXPECT_EQ(groups({{5, 0}, {7, 5}, {3, 5}}), apart) << "touches an edge from inside";
    EXPECT_EQ(groups({{5, 0}, {7, -5}, {3, -5}}), apart) << "touches an edge from outside";
    EXPECT_EQ(groups({{0, 0}, {5, 3}, {3, 5}}), apart) << "touches a corner from inside";
    EXPECT_EQ(groups({{0, 0}, {-5, -3}, {-3, -5}}), apart) << "touches a corner from outside";
    EXPECT_EQ(groups({{0, 0}, {5, 5}, {-5, 5}}), together) << "passes through a corner";
    EXPECT_EQ(groups({{5, 0}, {6, 5}, {4, -5}}), together) << "a corner that passes an edge";
    EXPECT_EQ(groups({{2, 0}, {8, 0}, {5, 5}}), together) << "runs along an edge";
    EXPECT_EQ(groups({{10, 0}, {20, 0}, {20, 10}}), apart) << "meets an edge's end in line with it";
    EXPECT_EQ(groups(square), together) << "the same again";
    // Loops that cross share a group, others keep theirs; a loop may cross itself.
    EXPECT_EQ(zr::CrossingGroups({{{50, 50}, {60, 50}, {55, 60}},
                                  {{0, 0}, {4, 4}, {4, 0}, {0, 4}},
                                  {{100, 0}, {110, 0}, {105, 10}},
                                  {{100, 5}, {110, 5}, {105, 15}}}),
              (std::vector<int>{kApart, 1, 2, 2}));
}

TEST(CrossingGroups, RefusesWhatWouldTakeMinutes) {
    const auto bars = [](int count, bool areCrossed) {
        const std::int64_t length = 4 * count;
        std::vector<zr::GridLoop> loops;
        for (std::int64_t at = 0; at < length; at += 4) {
            loops.push_back({{0, at}, {length, at}, {length, at + 2}, {0, at + 2}});
            if (areCrossed) loops.push_back({{at, 0}, {at + 2, 0}, {at + 2, length}, {at, length}});
        }
        return loops;
    };
    EXPECT_NO_THROW(zr::CrossingGroups(bars(40, true)));
    EXPECT_THROW(zr::CrossingGroups(bars(100, true)), zr::TooIntricate);
    EXPECT_NO_THROW(zr::CrossingGroups(bars(2000, false)));
    EXPECT_THROW(zr::CrossingGroups(bars(20'000, false)), zr::TooIntricate);
}

}  // namespace
