// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>

#include "host/poly_boolean.h"
#include "module/cadtext/stroke_font.h"
#include "tests/module/cadtext/text_kit.h"

namespace {

TEST(StrokeFont, IsTheWholeTable) {
    const int widths[] = {16, 10, 16, 21, 20, 24, 26, 10, 14, 14, 16, 26, 10, 26, 10, 22, 20, 20, 20,
                          20, 20, 20, 20, 20, 20, 20, 10, 10, 24, 26, 24, 18, 27, 18, 21, 21, 21, 19,
                          18, 21, 22, 8,  16, 21, 17, 24, 22, 22, 21, 22, 21, 20, 16, 22, 18, 24, 20,
                          18, 20, 14, 14, 14, 16, 16, 10, 19, 19, 18, 19, 18, 12, 19, 19, 8,  10, 17,
                          8,  30, 19, 19, 19, 19, 13, 17, 12, 19, 16, 22, 17, 16, 17, 14, 8,  14, 24};
    ASSERT_EQ(std::size(widths), std::size(zrt::kStrokeFont));
    int minX = 99, maxX = -99, minY = 99, maxY = -99;
    for (std::size_t i = 0; i < std::size(widths); ++i) {
        const zrt::StrokeGlyph& glyph = zrt::kStrokeFont[i];
        EXPECT_EQ(glyph.advance, widths[i]) << i;
        for (int k = 0; k < glyph.pairCount; ++k) {
            const zrt::StrokePair pair = glyph.pairs[k];
            if (pair == zrt::kPenUp) continue;
            minX = std::min<int>(minX, pair.x);
            maxX = std::max<int>(maxX, pair.x);
            minY = std::min<int>(minY, pair.y);
            maxY = std::max<int>(maxY, pair.y);
        }
        EXPECT_FALSE(glyph.pairCount > 0 && glyph.pairs[glyph.pairCount - 1] == zrt::kPenUp) << i;
    }
    EXPECT_EQ(minX, 0);
    EXPECT_EQ(maxX, 26);
    EXPECT_EQ(minY, -7);
    EXPECT_EQ(maxY, 25);
}

TEST(StrokeText, DrawsLettersLineByLine) {
    const auto text = Strokes(u"A\u00E9\r\nA ,");
    ASSERT_EQ(text->GetContourCount(), 7);
    EXPECT_EQ(Points(*text, 0), (std::vector<Vertex>{{9, 21, 0}, {1, 0, 0}}));
    EXPECT_EQ(Points(*text, 2), (std::vector<Vertex>{{4, 7, 0}, {14, 7, 0}}));
    // The second line is above the first; characters outside the table take no room.
    EXPECT_EQ(Points(*text, 3), (std::vector<Vertex>{{9, 50, 0}, {1, 29, 0}}));
    EXPECT_EQ(text->GetLetterIndex(3), 4);
    // (6, -1) is a point, not a lifted pen.
    ASSERT_EQ(text->GetPointCount(6), 8);
    EXPECT_EQ(text->GetPoints(6)[5], (Vertex{34 + 6, 29 - 1, 0}));
    EXPECT_EQ(Strokes(u"")->GetContourCount(), 0);
}

TEST(OutlineText, ClosesContoursAndMovesThePen) {
    const auto text = Outlines(u"A BO");
    ASSERT_EQ(text->GetContourCount(), 7);  // 2 of A, 3 of B, 2 of O
    const int letters[] = {0, 0, 2, 2, 2, 3, 3};
    for (int k = 0; k < 7; ++k) {
        EXPECT_EQ(text->GetLetterIndex(k), letters[k]);
        const std::vector<Vertex> points = Points(*text, k);
        EXPECT_EQ(points.front(), points.back());
        for (const Vertex& point : points) EXPECT_EQ(point.z, 0);
    }
    // 82 + 38 device units on: A and space.
    const auto alone = Outlines(u"B");
    for (int i = 0; i < alone->GetPointCount(0); ++i) {
        EXPECT_EQ(text->GetPoints(2)[i].x, alone->GetPoints(0)[i].x + 120);
        EXPECT_EQ(text->GetPoints(2)[i].y, alone->GetPoints(0)[i].y);
    }
    // Twice the size, twice the coordinates.
    const auto big = Outlines(u"B", Font(u"DejaVu Sans"), 24);
    EXPECT_EQ(big->GetPoints(0)[0], (Vertex{2 * alone->GetPoints(0)[0].x, 2 * alone->GetPoints(0)[0].y, 0}));
}

TEST(OutlineText, BreaksLines) {
    const struct {
        const char16_t* text;
        LONG height;
        int letter;  // position of the letter examined
        float x, y;  // where its origin ends up
    } cases[] = {
        {u"A\r\nA", -12, 0, 0, 10},                               // 1 - MulDiv(-12, 72, 96)
        {u"A\r\nA", -12, 3, 0, 0},    {u"A\nA", -12, 2, 82, 0},   // a line feed alone keeps the pen's place
        {u"A\n", -12, 0, 0, 0},                                   // nothing follows the break
        {u"A\n\n\nA", -12, 0, 0, 30}, {u"A\n\r", -12, 0, 0, 10},  // a carriage return follows it
        {u"A\nA", 10, 0, 0, 11},      {u"A\nA", -10, 0, 0, 9},    // 7.5 rounds away from zero
    };
    for (const auto& c : cases) {
        const auto text = Outlines(c.text, Font(u"DejaVu Sans", c.height));
        const auto alone = Outlines(u"A", Font(u"DejaVu Sans", c.height));
        int contour = 0;
        while (contour < text->GetContourCount() && text->GetLetterIndex(contour) != c.letter) ++contour;
        ASSERT_LT(contour, text->GetContourCount());
        const Vertex origin = alone->GetPoints(0)[0];
        const Vertex placed = text->GetPoints(contour)[0];
        EXPECT_NEAR(placed.x - origin.x, c.x, 1e-4) << c.height;
        EXPECT_NEAR(placed.y - origin.y, c.y, 1e-4) << c.height;
    }
}

// Records the calls made to it.
class RecordingEngine : public PolyBoolean {
public:
    static inline std::string log;
    static inline bool throwsInTriangulate = false;

    Polygon* CreatePolygon(int count, const double*) override {
        log += "create " + std::to_string(count) + "; ";
        return Handle(++m_last);
    }
    Polygon* Combine(Polygon* a, Polygon* b, int operation, int flag) override {
        log += "combine " + Name(a) + " " + Name(b) + " " + std::to_string(operation) + std::to_string(flag) +
               "; ";
        return Handle(++m_last);
    }
    void Triangulate(Polygon* polygon, TriangleCallback callback, void* user) override {
        log += "triangulate " + Name(polygon) + "; ";
        if (throwsInTriangulate) throw std::bad_alloc();
        const double corner[] = {0.1, 0.2};
        callback(corner, corner, corner, user);
    }
    void SetScale(double sx, double sy) override {
        EXPECT_EQ(sx, sy);
        log += sx < 0 ? "scale below 0; " : "scale " + std::to_string(sx) + "; ";
    }
    void DeletePolygon(Polygon* polygon) override { log += "delete " + Name(polygon) + "; "; }
    ~RecordingEngine() override { log += "released"; }

private:
    static Polygon* Handle(std::uintptr_t number) { return reinterpret_cast<Polygon*>(number); }
    static std::string Name(Polygon* p) { return std::to_string(reinterpret_cast<std::uintptr_t>(p)); }
    std::uintptr_t m_last = 0;
};

class LetterMesh : public testing::Test {
protected:
    LetterMesh() {
        RecordingEngine::log.clear();
        RecordingEngine::throwsInTriangulate = false;
        host.AddExtension(kTypePolyBoolean, [] { return new RecordingEngine; });
    }

    TestHost host;
};

TEST_F(LetterMesh, IsMadeLetterByLetter) {
    const auto mesh =
        Mesh(u"lil");  // an l is 4 points, an i two contours; the text is 43.3 high and 88.1 wide
    ASSERT_TRUE(mesh);
    EXPECT_EQ(mesh->GetVertexCount(), 1);
    EXPECT_EQ(mesh->GetTriangleCount(), 3);
    const std::string scale = std::to_string(
        262143.5 / std::max(Outlines(u"lil")->GetSize().first, Outlines(u"lil")->GetSize().second));
    EXPECT_EQ(RecordingEngine::log,
              "scale " + scale +
                  "; create 5; triangulate 1; delete 1; create 5; create 5; combine 2 3 21; "
                  "triangulate 4; delete 4; create 5; triangulate 5; delete 5; released");
}

TEST_F(LetterMesh, OfNoLettersIsEmpty) {
    for (const char16_t* text : {u"", u"   ", u"\r\n"}) {
        RecordingEngine::log.clear();
        const auto mesh = Mesh(text);
        ASSERT_TRUE(mesh);
        EXPECT_EQ(RecordingEngine::log, "scale below 0; triangulate 0; delete 0; released");
    }
}

TEST_F(LetterMesh, FreesEverythingOnFailure) {
    RecordingEngine::throwsInTriangulate = true;
    EXPECT_FALSE(Mesh(u"l"));
    EXPECT_TRUE(RecordingEngine::log.ends_with("triangulate 1; delete 1; released")) << RecordingEngine::log;
    EXPECT_TRUE(host.failures.empty());
}

TEST(LetterMeshWithoutEngine, SaysSo) {
    TestHost host;
    TestSink sink;
    EXPECT_FALSE(Mesh(u"A", Font(u"DejaVu Sans"), &sink));
    EXPECT_EQ(sink.codes, std::vector<int>{0});
    EXPECT_EQ(sink.texts, std::vector<std::u16string>{u"PolyBoolean extension not found"});
    EXPECT_TRUE(host.failures.empty());
    EXPECT_FALSE(Mesh(u"A"));
    EXPECT_EQ(host.failures, std::vector<int>{1});
}

}  // namespace
