// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "host/ref.h"
#include "module/cadtext/letters_contours.h"
#include "module/cadtext/letters_polygons.h"

namespace {

using Vertex = vl::Vector3<float>;

template <class T>
vl::Ref<T> Make() {
    return vl::Ref<T>::Adopt(new T);
}

vl::Matrix4<double> Moved(double x, double y, double z) {
    vl::Matrix4<double> m;
    m.SetTranslate({x, y, z});
    return m;
}

TEST(LettersContoursTest, AnswersByContour) {
    const auto contours = Make<LettersContours>();
    EXPECT_EQ(contours->GetSize(), (std::pair<float, float>(-2e25f, -2e25f)));
    contours->AddContour(7);
    contours->AddContourPoint({1, 2, 3});
    EXPECT_EQ(contours->GetSize(), (std::pair<float, float>(0, 0)));
    contours->AddContour(8);
    contours->AddContour(9);
    contours->AddContourPoint({-4, 12, 0});
    contours->AddContourPoint({5, 6, 0});

    ASSERT_EQ(contours->GetContourCount(), 3);
    const int counts[] = {0, 1, 0, 2, 0};
    const int letters[] = {0, 7, 0, 9, 0};
    for (int contour = -1; contour <= 3; ++contour) {
        EXPECT_EQ(contours->GetPointCount(contour), counts[contour + 1]) << contour;
        EXPECT_EQ(contours->GetLetterIndex(contour), letters[contour + 1]) << contour;
        EXPECT_EQ(contours->GetPoints(contour) != nullptr, counts[contour + 1] != 0) << contour;
    }
    EXPECT_EQ(contours->GetPoints(2)[1], (Vertex{5, 6, 0}));
    EXPECT_EQ(contours->GetSize(), (std::pair<float, float>(9, 10)));

    contours->Transform(Moved(1, -1, 2));
    EXPECT_EQ(contours->GetPoints(0)[0], (Vertex{2, 1, 5}));
    EXPECT_EQ(contours->GetPoints(2)[1], (Vertex{6, 5, 2}));
    EXPECT_STREQ(contours->GetTypeName(), "*");
    EXPECT_TRUE(contours->IsTypeOf("ZR_CharContour"));
    EXPECT_EQ(contours->CopyFrom(Make<LettersPolygons>().Get(), 0), vl::kWrongClass);
}

TEST(LettersContoursTest, ExtremesStartAtALimit) {
    const auto contours = Make<LettersContours>();
    contours->AddContour(0);
    contours->AddContourPoint({2e25f, 0, 0});
    EXPECT_EQ(contours->GetSize().first, 2e25f - 1e25f);
}

TEST(LettersPolygonsTest, WeldsTheCornersOfItsTriangles) {
    const auto mesh = Make<LettersPolygons>();
    EXPECT_EQ(mesh->GetVertices(), nullptr);
    EXPECT_EQ(mesh->GetTriangles(), nullptr);
    EXPECT_TRUE(mesh->IsTypeOf("ZR_CharPoly"));
    EXPECT_EQ(mesh->CopyFrom(Make<LettersContours>().Get(), 0), vl::kWrongClass);
    const double a[] = {0, 0}, b[] = {1, 0}, c[] = {1, 1}, d[] = {0, 1 + 1e-12}, e[] = {-0.0, 0};
    EXPECT_EQ(LettersPolygons::CollectTriangle(a, b, c, mesh.Get()), 1);
    EXPECT_EQ(LettersPolygons::CollectTriangle(e, c, d, mesh.Get()), 1);
    EXPECT_EQ(LettersPolygons::CollectTriangle(b, b, b, mesh.Get()), 1);
    ASSERT_EQ(mesh->GetVertexCount(), 4);
    ASSERT_EQ(mesh->GetTriangleCount(), 3);
    const int expected[][3] = {{0, 1, 2}, {0, 2, 3}, {1, 1, 1}};
    for (int i = 0; i < 3; ++i) {
        const LetterTriangle& t = mesh->GetTriangles()[i];
        EXPECT_EQ(t.i0, expected[i][0]);
        EXPECT_EQ(t.i1, expected[i][1]);
        EXPECT_EQ(t.i2, expected[i][2]);
    }
    EXPECT_FALSE(std::signbit(mesh->GetVertices()[0].x));
    EXPECT_EQ(mesh->GetVertices()[3], (Vertex{0, 1, 0}));

    mesh->Transform(Moved(10, 0, 0));
    EXPECT_EQ(mesh->GetSize(), (std::pair<float, float>(1, 1)));
    // The index follows the transformed vertices.
    EXPECT_EQ(mesh->FindOrAddVertex({11, 1, 0}), 2);
    EXPECT_EQ(mesh->FindOrAddVertex({1, 1, 0}), 4);
}

TEST(LettersPolygonsTest, TheIndexAgreesWithALinearSearch) {
    std::mt19937 random(3);
    const auto mesh = Make<LettersPolygons>();
    std::vector<Vertex> plain;
    const auto coordinate = [&]() -> float {
        const unsigned pick = random() % 12;
        if (pick == 0) return -0.0f;
        if (pick == 1) return std::numeric_limits<float>::quiet_NaN();
        if (pick == 2) return std::numeric_limits<float>::infinity();
        return static_cast<float>(pick) * 0.1f - 0.5f;
    };
    for (int i = 0; i < 5000; ++i) {
        const Vertex v{coordinate(), coordinate(), coordinate()};
        std::size_t expected = 0;
        while (expected < plain.size() && plain[expected] != v) ++expected;
        if (expected == plain.size()) plain.push_back(v);
        ASSERT_EQ(mesh->FindOrAddVertex(v), static_cast<int>(expected));
        if (random() % 500 == 0) mesh->EndBuilding();
    }
    EXPECT_EQ(mesh->GetVertexCount(), static_cast<int>(plain.size()));
}

}  // namespace
