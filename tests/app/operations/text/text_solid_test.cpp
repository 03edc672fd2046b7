// SPDX-License-Identifier: MIT
#include "app/operations/text/text_solid.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

using Point = TextGeometry::Point;

// Every edge belongs to two triangles that traverse it in opposite directions.
void ExpectClosed(const TextGeometry& solid) {
    std::map<std::pair<int, int>, int> edges;
    for (const LetterTriangle& t : solid.triangles) {
        ++edges[{t.i0, t.i1}];
        ++edges[{t.i1, t.i2}];
        ++edges[{t.i2, t.i0}];
    }
    for (const auto& [edge, uses] : edges) {
        ASSERT_NE(edge.first, edge.second);
        ASSERT_EQ(uses, 1) << edge.first << " to " << edge.second;
        ASSERT_TRUE(edges.contains({edge.second, edge.first})) << edge.first << " to " << edge.second;
    }
}

double Volume(const TextGeometry& solid) {
    double volume = 0;
    for (const LetterTriangle& t : solid.triangles) {
        const auto at = [&](int i) { return solid.points[static_cast<std::size_t>(i)]; };
        const Point a = at(t.i0), b = at(t.i1), c = at(t.i2);
        volume += double{a.x} * (double{b.y} * c.z - double{b.z} * c.y) -
                  double{a.y} * (double{b.x} * c.z - double{b.z} * c.x) +
                  double{a.z} * (double{b.x} * c.y - double{b.y} * c.x);
    }
    return volume / 6;
}

double Area(const TextGeometry& flat) {
    double area = 0;
    for (const LetterTriangle& t : flat.triangles) {
        const auto at = [&](int i) { return flat.points[static_cast<std::size_t>(i)]; };
        const Point a = at(t.i0), b = at(t.i1), c = at(t.i2);
        area += (double{b.x} - a.x) * (double{c.y} - a.y) - (double{c.x} - a.x) * (double{b.y} - a.y);
    }
    return area / 2;
}

TEST(TextSolid, IsClosedForAllCharactersOfManyFonts) {
    const TextFont fonts[] = {
        {u"DejaVu Sans"},
        {u"DejaVu Serif", -48, 700},
        {u"DejaVu Sans Mono", -12, 400, true},
        {u"DejaVu Sans Condensed"},
        {u"DejaVu Math TeX Gyre"},
        {u"Liberation Sans", -200},
        {u"Liberation Serif"},
        {u"Liberation Mono", 13},
        {u"Liberation Sans Narrow"},
        {u"Cantarell"},
        {u"Cantarell", -12, 1000},
        {u"Cantarell", -12, 400, true},
    };
    for (const TextFont& font : fonts) {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(font.family) << ", weight " << font.weight);
        for (const char16_t c : PrintableCharacters()) {
            SCOPED_TRACE(static_cast<char>(c));
            const TextGeometry flat = Draw({c}, TextStyle::kMesh, {}, font).geometry;
            const TextGeometry solid = Draw({c}, TextStyle::kMesh, {.depth = 7.5}, font).geometry;
            ExpectClosed(solid);
            EXPECT_NEAR(Volume(solid), Area(flat) * 7.5, 1e-5 * Volume(solid));
        }
    }
}

TEST(TextSolid, IsClosedForOtherScripts) {
    for (const char16_t* family : {u"DejaVu Sans", u"Liberation Serif"}) {
        for (char16_t c = 0xA1; c < 0x530; ++c) {
            SCOPED_TRACE(static_cast<int>(c));
            ExpectClosed(Draw({c}, TextStyle::kMesh, {.depth = 7.5}, {family}).geometry);
        }
    }
}

// Two squares that touch at a corner, and three around a hole, which touch only at corners.
TEST(TextSolid, SplitsPointsWhereTheMeshTouchesItself) {
    TextGeometry flat;
    flat.isMesh = true;
    const auto addSquare = [&](int a, int b, int c, int d) {
        flat.triangles.push_back({a, b, c});
        flat.triangles.push_back({a, c, d});
    };
    flat.points = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {2, 1, 0}, {2, 2, 0}, {1, 2, 0}};
    addSquare(0, 1, 2, 3);
    addSquare(2, 4, 5, 6);
    TextGeometry solid = flat;
    AddDepth(solid, 2);
    ExpectClosed(solid);
    EXPECT_EQ(solid.points.size(), 16u);
    EXPECT_NEAR(Volume(solid), 4, 1e-12);

    // A triangle without three distinct corners is an edge.
    flat.triangles.push_back({0, 0, 1});
    AddDepth(flat, 2);
    ExpectClosed(flat);
    EXPECT_EQ(flat.triangles.size(), solid.triangles.size());
}

// Letters that touch or overlap keep their own points.
TEST(TextSolid, OfALineIsTheSumOfItsLetters) {
    const DrawingOptions options{.capHeight = 10, .depth = 2};
    const TextGeometry line = Draw(u"VA|||\u2588\u2588\u2588", TextStyle::kMesh, options).geometry;
    ExpectClosed(line);
    double sum = 0;
    for (const char16_t c : std::u16string(u"VA|||\u2588\u2588\u2588"))
        sum += Volume(Draw({c}, TextStyle::kMesh, options).geometry);
    EXPECT_NEAR(Volume(line), sum, 1e-4 * sum);
}

}  // namespace
}  // namespace zr
