// SPDX-License-Identifier: MIT
#include "app/operations/text/text_drawing.h"

#include <gtest/gtest.h>

#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

TEST(TextDrawing, ScalesCapitalsToTheRequestedHeight) {
    for (const TextStyle style : {TextStyle::kStroke, TextStyle::kOutline, TextStyle::kMesh}) {
        const TextDrawing drawing = Draw(u"H", style, {.capHeight = 5});
        const TextBox box = BoxOf(drawing.geometry.points);
        EXPECT_FLOAT_EQ(box.high.y - box.low.y, 5);
        EXPECT_FLOAT_EQ(box.low.y, 0);
        EXPECT_DOUBLE_EQ(drawing.metrics.capHeight, 5);
    }
    // Without a height, units are those of the module's own layout.
    TextRequest request{u"gH", TextStyle::kOutline, {u"DejaVu Serif", -20}, 7};
    const TextGeometry module = MakeText(test::TheHost(), request);
    const TextGeometry drawing = MakeDrawing(test::TheHost(), request, {}).geometry;
    ASSERT_EQ(drawing.points.size(), module.points.size());
    for (std::size_t i = 0; i < module.points.size(); ++i) {
        EXPECT_NEAR(drawing.points[i].x, module.points[i].x, 1e-4);
        EXPECT_NEAR(drawing.points[i].y, module.points[i].y, 1e-4);
    }
}

TEST(TextDrawing, AlignsLinesByTheirAdvances) {
    // An i advances 8 units and an m 30; the strokes of i begin 4 units after its start.
    const struct {
        TextAlign align;
        double starts[2];
    } cases[] = {{TextAlign::kLeft, {0, 0}}, {TextAlign::kCenter, {-4, -19}}, {TextAlign::kRight, {-8, -38}}};
    for (const auto& c : cases) {
        const TextDrawing drawing = Draw(u"i\nim", TextStyle::kStroke, {.align = c.align});
        ASSERT_EQ(drawing.metrics.lines.size(), 2u);
        for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(drawing.metrics.lines[i].x, c.starts[i]);
        const TextGeometry& geometry = drawing.geometry;
        EXPECT_EQ(geometry.PointsOf(geometry.contours[1]).front(),
                  (TextGeometry::Point{static_cast<float>(c.starts[0] + 4), 29 + 14, 0}));
        EXPECT_EQ(geometry.contours[2].letter, 2);
    }
}

TEST(TextDrawing, BreaksLinesAtEveryKindOfLineEnd) {
    const auto baselines = [](std::u16string text, double spacing = 1) {
        std::vector<double> found;
        for (const auto& line : Draw(text, TextStyle::kOutline, {.lineSpacing = spacing}).metrics.lines)
            found.push_back(line.baseline);
        return found;
    };
    // 1.2 times an em of 120 units.
    const std::vector<double> three = {288, 144, 0};
    EXPECT_EQ(baselines(u"A\nB\nC"), three);
    EXPECT_EQ(baselines(u"A\r\nB\rC\r\n"), three);
    EXPECT_EQ(baselines(u"\n\nC"), three);
    EXPECT_EQ(baselines(u"A\nB", 0.5), (std::vector<double>{72, 0}));
    EXPECT_TRUE(baselines(u"").empty());
}

TEST(TextDrawing, ReportsPenPositions) {
    const TextDrawing drawing = Draw(u"A\nVA", TextStyle::kOutline, {.capHeight = 87.5});
    const TextMetrics::Line& line = drawing.metrics.lines[1];
    ASSERT_EQ(line.characters.size(), 2u);
    EXPECT_EQ(line.characters[1].position, 3u);
    EXPECT_EQ(line.characters[1].code, u'A');
    EXPECT_DOUBLE_EQ(line.characters[1].x, line.characters[0].advance);
    EXPECT_DOUBLE_EQ(line.advance, line.characters[0].advance + line.characters[1].advance);
    EXPECT_NEAR(line.advance, 2 * 0.684 * 120, 1);  // of the em, in this font

    // Characters missing from the stroke font do not advance the pen.
    const TextDrawing strokes = Draw(u"a\u00E9b", TextStyle::kStroke);
    EXPECT_EQ(strokes.metrics.lines[0].characters[1].advance, 0);
    EXPECT_EQ(strokes.metrics.lines[0].characters[2].x, 19);
}

}  // namespace
}  // namespace zr
