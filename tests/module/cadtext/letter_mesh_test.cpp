// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "app/services/poly_boolean.h"
#include "tests/base/rounds.h"
#include "tests/module/cadtext/text_kit.h"

namespace {

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

// The area inside an odd number of contours, summed over thin strips.
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
// corners and holes need. Outer contours and holes of these fonts wind in opposite directions.
TEST(LetterMeshes, CoverTheirOutlines) {
    TestHost host;
    host.AddExtension(kTypePolyBoolean, [] { return new zr::PolyBooleanExtension; });
    for (const LOGFONTW& font : {Font(u"DejaVu Sans"), Font(u"DejaVu Serif", -48, FW_BOLD),
                                 Font(u"Liberation Sans"), Font(u"Cantarell")}) {
        for (char16_t c = 33; c <= 126; c += 4 / zr::test::Rounds(4)) {
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
    const auto distant = Mesh((spaces + u"&").c_str());
    const auto amid = Mesh((std::u16string(500, u'n') + u"&").c_str());
    EXPECT_EQ(distant->GetTriangleCount(), alone->GetTriangleCount());
    EXPECT_EQ(amid->GetTriangleCount() - 500 * Mesh(u"n")->GetTriangleCount(), alone->GetTriangleCount());
    EXPECT_NEAR(MeshArea(*distant), MeshArea(*alone), 1e-3 * MeshArea(*alone));
}

}  // namespace
