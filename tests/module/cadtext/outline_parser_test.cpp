// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <numbers>

#include "module/cadtext/glyph_outline.h"
#include "tests/module/cadtext/native_buffer.h"

namespace {

using Contour = std::vector<GlyphPoint>;

constexpr double kCoarse = std::numbers::pi / 2;

// A separate heap block, so that a sanitizer build catches any read past its end.
bool Parse(GlyphOutline& outline, const std::vector<BYTE>& bytes) {
    const std::unique_ptr<BYTE[]> block(new BYTE[bytes.size()]);
    std::copy(bytes.begin(), bytes.end(), block.get());
    return outline.ParseNativeOutline(block.get(), bytes.size());
}

std::vector<Contour> Parsed(const NativeBuffer& buffer, double tolerance = kCoarse, double size = 12) {
    GlyphOutline outline(tolerance, size);
    EXPECT_TRUE(Parse(outline, buffer.bytes));
    return outline.contours;
}

TEST(OutlineParser, LinesGiveTheirPointsOnce) {
    const NativeBuffer buffer = NativeBuffer()
                                    .Polygon(0, 0)
                                    .Line({{10, 0}, {10, 0}, {10, 10}})
                                    .Line({{-2.5, 0.25}, {0, 0}})
                                    .End()
                                    .Polygon(1, 1)
                                    .Line({{2, 2}})
                                    .End();
    EXPECT_EQ(Parsed(buffer),
              (std::vector<Contour>{{{0, 0}, {10, 0}, {10, 10}, {-2.5f, 0.25f}, {0, 0}}, {{1, 1}, {2, 2}}}));
    EXPECT_EQ(Parsed(buffer, kCoarse, 6)[1], (Contour{{0.5f, 0.5f}, {1, 1}}));
}

TEST(OutlineParser, SplinesPassThroughTheMiddlesOfTheirControlPoints) {
    const NativeBuffer buffer =
        NativeBuffer().Polygon(0, 0).Spline({{0, 10}, {10, 20}, {20, 10}, {20, 0}}).Line({{5, -5}}).End();
    const Contour expected = {{0, 0}, {5, 15}, {15, 15}, {20, 0}, {5, -5}};
    EXPECT_EQ(Parsed(buffer), (std::vector<Contour>{expected}));
    // Beyond pi / 2 nothing changes.
    EXPECT_EQ(Parsed(buffer, 3.0), (std::vector<Contour>{expected}));
}

TEST(OutlineParser, ASmallerAngleHalvesTheBends) {
    // The cubic of a quadratic P B E has its inner control points in the middle of the legs.
    const NativeBuffer arch = NativeBuffer().Polygon(0, 0).Spline({{50, 100}, {100, 0}}).End();
    std::size_t last = Parsed(arch)[0].size();
    EXPECT_EQ(last, 2u);
    for (const double tolerance : {0.3, 0.05, 0.01}) {
        const Contour contour = Parsed(arch, tolerance)[0];
        EXPECT_GT(contour.size(), last);
        last = contour.size();
        EXPECT_EQ(contour.front(), (GlyphPoint{0, 0}));
        EXPECT_EQ(contour.back(), (GlyphPoint{100, 0}));
        // At half its top is 0.75 of the way up to the middle of the inner points.
        const auto top = std::max_element(contour.begin(), contour.end(),
                                          [](GlyphPoint a, GlyphPoint b) { return a.y < b.y; });
        EXPECT_EQ(*top, (GlyphPoint{50, 37.5}));
        EXPECT_TRUE(std::is_sorted(contour.begin(), contour.end(),
                                   [](GlyphPoint a, GlyphPoint b) { return a.x < b.x; }));
    }
    EXPECT_EQ(last, 79u);
}

TEST(OutlineParser, OddRecordsHaveADefinedMeaning) {
    // Without points the current point stays; a spline of one point is a line.
    EXPECT_EQ(Parsed(NativeBuffer().Polygon(1, 2).Line({}).Spline({}).Spline({{5, 5}}).Line({{7, 7}}).End()),
              (std::vector<Contour>{{{1, 2}, {5, 5}, {7, 7}}}));
    EXPECT_EQ(Parsed(NativeBuffer().Polygon(1, 2).End()), (std::vector<Contour>{{}}));
    EXPECT_EQ(Parsed(NativeBuffer()), std::vector<Contour>());
}

TEST(OutlineParser, AFaultKeepsWhatCameBefore) {
    const auto first = [] { return NativeBuffer().Polygon(0, 0).Line({{3, 4}}).End(); };
    const struct {
        const char* what;
        NativeBuffer buffer;
        std::vector<Contour> kept;
    } cases[] = {
        {"cubic curves",
         first().Polygon(1, 1).Curve(TT_PRIM_CSPLINE, {{2, 2}}).End(),
         {{{0, 0}, {3, 4}}, {}}},
        {"another polygon type", first().Polygon(1, 1, 23).Line({{2, 2}}).End(), {{{0, 0}, {3, 4}}}},
        {"a polygon of no length", first().Polygon(1, 1).Line({{2, 2}}).End(0), {{{0, 0}, {3, 4}}}},
        {"shorter than its header", first().Polygon(1, 1).Line({{2, 2}}).End(12), {{{0, 0}, {3, 4}}}},
        {"longer than the buffer", first().Polygon(1, 1).Line({{2, 2}}).End(29), {{{0, 0}, {3, 4}}}},
        {"a record cut off", first().Polygon(1, 1).End(18), {{{0, 0}, {3, 4}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        GlyphOutline outline(kCoarse, 12);
        EXPECT_FALSE(Parse(outline, c.buffer.bytes));
        EXPECT_EQ(outline.contours, c.kept);
    }
}

TEST(OutlineParser, StaysWithinATruncatedBuffer) {
    const NativeBuffer whole = NativeBuffer()
                                   .Polygon(0, 0)
                                   .Line({{10, 0}})
                                   .Spline({{20, 0}, {20, 10}, {0, 10}})
                                   .End()
                                   .Polygon(1, 1)
                                   .Line({{2, 2}, {3, 1}})
                                   .End();
    const std::size_t secondPolygon = 16 + (4 + 8) + (4 + 24);
    for (std::size_t length = 0; length < whole.bytes.size(); ++length) {
        std::vector<BYTE> cut(whole.bytes.begin(), whole.bytes.begin() + static_cast<std::ptrdiff_t>(length));
        GlyphOutline outline(kCoarse, 12);
        EXPECT_EQ(Parse(outline, cut), length == 0 || length == secondPolygon) << length;
        // And with every count at its maximum.
        for (std::size_t i = 0; i < length; ++i) {
            std::vector<BYTE> changed = cut;
            changed[i] = 0xFF;
            GlyphOutline other(kCoarse, 12);
            Parse(other, changed);
        }
    }
}

TEST(GlyphOutlineTest, ReadsTheSystemsOutlineTenTimesEnlarged) {
    LOGFONTW font{};
    font.lfHeight = -12;
    std::memcpy(font.lfFaceName, u"DejaVu Sans", sizeof u"DejaVu Sans");
    const GlyphOutline space(' ', font, kCoarse, 24);
    EXPECT_TRUE(space.contours.empty());
    EXPECT_EQ(space.advance, 76);  // 38 device units at the height of 120, twice

    const GlyphOutline letter('O', font, kCoarse, 12);
    ASSERT_EQ(letter.contours.size(), 2u);
    EXPECT_EQ(letter.advance, 94);
    float top = 0;
    for (const Contour& contour : letter.contours) {
        for (const GlyphPoint p : contour) top = std::max(top, p.y);
    }
    EXPECT_NEAR(top, 1520.0 / 2048 * 120, 0.1);  // 89.06, or 89 where outlines are fitted to the grid
    for (const Contour& contour : letter.contours) EXPECT_GT(contour.size(), 8u);

    font.lfHeight = 2147483647;  // wraps, and is refused or drawn small; never undefined
    EXPECT_NO_THROW(GlyphOutline('O', font, kCoarse, 12));
}

}  // namespace
