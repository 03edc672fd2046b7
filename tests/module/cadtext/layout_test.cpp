// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <new>
#include <numeric>
#include <string>

#include "app/services/poly_boolean.h"
#include "host/message_sink.h"
#include "kernix/host_app_base.h"
#include "module/cadtext/cad_text.h"
#include "module/cadtext/stroke_font.h"
#include "module/frame/globals.h"

namespace {

using vl::zr::legacy::GlyphContour;
using vl::zr::legacy::GlyphTesselated;
using Vertex = vl::Vector3<float>;

class TestHost : public kernix::HostAppBase {
public:
    TestHost() { g_pHost = this; }
    ~TestHost() override { g_pHost = nullptr; }
    void ReportFailure(int code) override { failures.push_back(code); }

    std::vector<int> failures;
};

class TestSink final : public MessageSink {
public:
    void Message(int code, const char16_t* format, ...) override {
        codes.push_back(code);
        texts.emplace_back(format);
    }

    std::vector<int> codes;
    std::vector<std::u16string> texts;
};

LOGFONTW Font(const char16_t* face, LONG height = -12, LONG weight = 0) {
    LOGFONTW font{};
    font.lfHeight = height;
    font.lfWeight = weight;
    std::char_traits<char16_t>::copy(font.lfFaceName, face, std::char_traits<char16_t>::length(face));
    return font;
}

vl::Ref<ZR_CADTEXT> MakeCadText() {
    return vl::Ref<ZR_CADTEXT>::Adopt(new ZR_CADTEXT);
}

vl::Ref<GlyphContour> Outlines(const char16_t* text, const LOGFONTW& font = Font(u"DejaVu Sans"),
                               double size = 12) {
    return vl::Ref<GlyphContour>::Adopt(MakeCadText()->CreateOutlineContours(text, font, size, nullptr));
}

vl::Ref<GlyphContour> Strokes(const char16_t* text) {
    return vl::Ref<GlyphContour>::Adopt(MakeCadText()->CreateStrokeContours(text, Font(u""), 12, nullptr));
}

vl::Ref<GlyphTesselated> Mesh(const char16_t* text, const LOGFONTW& font = Font(u"DejaVu Sans"),
                              MessageSink* sink = nullptr) {
    return vl::Ref<GlyphTesselated>::Adopt(MakeCadText()->CreatePolygons(text, font, 12, sink));
}

std::vector<Vertex> Points(GlyphContour& contours, int contour) {
    const Vertex* first = contours.GetPoints(contour);
    return std::vector<Vertex>(first, first + contours.GetPointCount(contour));
}

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
    // The second line stands above the first; what is not in the table takes no room.
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
        int letter;  // position of the letter looked at
        float x, y;  // where its own origin comes to stand
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

// Writes down what it is asked to do.
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

TEST_F(LetterMesh, OfNothingIsEmpty) {
    for (const char16_t* text : {u"", u"   ", u"\r\n"}) {
        RecordingEngine::log.clear();
        const auto mesh = Mesh(text);
        ASSERT_TRUE(mesh);
        EXPECT_EQ(RecordingEngine::log, "scale below 0; triangulate 0; delete 0; released");
    }
}

TEST_F(LetterMesh, FreesWhatItHoldsWhenItFails) {
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

double SignedArea(const std::vector<Vertex>& points) {
    double area = 0;
    for (std::size_t i = 0; i + 1 < points.size(); ++i) {
        area += (static_cast<double>(points[i].x) * points[i + 1].y -
                 static_cast<double>(points[i + 1].x) * points[i].y) /
                2;
    }
    return area;
}

double MeshArea(GlyphTesselated& mesh) {
    double area = 0;
    for (int t = 0; t < mesh.GetTriangleCount(); ++t) {
        const LetterTriangle& triangle = mesh.GetTriangles()[t];
        const Vertex* v = mesh.GetVertices();
        const double doubled = SignedArea({v[triangle.i0], v[triangle.i1], v[triangle.i2], v[triangle.i0]});
        EXPECT_GE(doubled, 0);
        area += doubled;
    }
    return area;
}

// What lies inside an odd number of contours, summed over thin strips.
double EvenOddArea(const std::vector<std::vector<Vertex>>& contours, float low, float high) {
    constexpr int kStrips = 5000;
    double area = 0;
    for (int strip = 0; strip < kStrips; ++strip) {
        const double y = low + (high - low) * (strip + 0.5) / kStrips;
        std::vector<double> crossings;
        for (const std::vector<Vertex>& points : contours) {
            for (std::size_t i = 0; i + 1 < points.size(); ++i) {
                const Vertex& a = points[i];
                const Vertex& b = points[i + 1];
                if ((a.y > y) != (b.y > y)) {
                    crossings.push_back(a.x + (y - a.y) * (static_cast<double>(b.x) - a.x) /
                                                  (static_cast<double>(b.y) - a.y));
                }
            }
        }
        std::sort(crossings.begin(), crossings.end());
        for (std::size_t i = 0; i + 1 < crossings.size(); i += 2) area += crossings[i + 1] - crossings[i];
    }
    return area * (high - low) / kStrips;
}

// With the host's own engine: every printable letter is covered to its outline with as few triangles as its
// corners and holes need. Outer contours and holes of these fonts wind against each other.
TEST(LetterMeshes, CoverTheirOutlines) {
    TestHost host;
    host.AddExtension(kTypePolyBoolean, [] { return new zr::PolyBooleanExtension; });
    for (const LOGFONTW& font : {Font(u"DejaVu Sans"), Font(u"DejaVu Serif", -48, FW_BOLD),
                                 Font(u"Liberation Sans"), Font(u"Cantarell")}) {
        for (char16_t c = 33; c <= 126; ++c) {
            SCOPED_TRACE(testing::Message()
                         << "weight " << font.lfWeight << ", face " << static_cast<char>(font.lfFaceName[0])
                         << ", character " << static_cast<char>(c));
            const char16_t text[] = {c, 0};
            const auto outline = Outlines(text, font);
            const auto mesh = Mesh(text, font);
            ASSERT_TRUE(outline && mesh);
            std::vector<std::vector<Vertex>> contours;
            float low = 1e9f, high = -1e9f;
            double total = 0;
            std::size_t corners = 0;
            for (int k = 0; k < outline->GetContourCount(); ++k) {
                std::vector<Vertex>& points = contours.emplace_back(Points(*outline, k));
                for (const Vertex& point : points) {
                    low = std::min(low, point.y);
                    high = std::max(high, point.y);
                }
                total += SignedArea(points);
                // An outline that ends where it began closes twice.
                corners += points.size() - 1 - (points[points.size() - 2] == points.front());
            }
            const auto holes = static_cast<std::size_t>(
                std::count_if(contours.begin(), contours.end(),
                              [&](const auto& points) { return SignedArea(points) * total < 0; }));
            const double area = EvenOddArea(contours, low, high);
            EXPECT_NEAR(MeshArea(*mesh), area, area * 1e-3);
            EXPECT_LE(static_cast<std::size_t>(mesh->GetTriangleCount()),
                      corners + 2 * holes - 2 * (contours.size() - holes));
        }
    }
}

// The same letter further on in a long line keeps its shape.
TEST(LetterMeshes, DoNotDependOnTheTextAround) {
    TestHost host;
    host.AddExtension(kTypePolyBoolean, [] { return new zr::PolyBooleanExtension; });
    const std::u16string spaces(3000, u' ');
    const auto alone = Mesh(u"&");
    const auto far = Mesh((spaces + u"&").c_str());
    const auto amid = Mesh((std::u16string(500, u'n') + u"&").c_str());
    EXPECT_EQ(far->GetTriangleCount(), alone->GetTriangleCount());
    EXPECT_EQ(amid->GetTriangleCount() - 500 * Mesh(u"n")->GetTriangleCount(), alone->GetTriangleCount());
    EXPECT_NEAR(MeshArea(*far), MeshArea(*alone), 1e-3 * MeshArea(*alone));
}

}  // namespace
