// SPDX-License-Identifier: MIT
#include "host/math.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using vl::AffineParts;
using vl::AngleAxis;
using vl::Quaternion;
using M = vl::Matrix4<double>;
using V3 = vl::Vector3<double>;
using V3f = vl::Vector3<float>;

constexpr float kPi = 3.14159265f;

class Random {
public:
    float Number(float low, float high) { return std::uniform_real_distribution<float>(low, high)(m_engine); }
    AngleAxis Turn() {
        const V3f a{Number(-1, 1), Number(-1, 1), Number(-1, 1)};
        const float length = std::sqrt(a.x * a.x + a.y * a.y + a.z * a.z) + 1e-6f;
        return {a.x / length, a.y / length, a.z / length, Number(0.01f, 3.1f)};
    }
    V3f Vector(float low, float high) { return {Number(low, high), Number(low, high), Number(low, high)}; }

private:
    std::mt19937 m_engine{7};
};

M Rotation(const AngleAxis& a) {
    M m;
    m.SetRotate(a);
    return m;
}

M Trs(const V3f& t, const AngleAxis& r, const V3f& s) {
    M m;
    m.SetScale(V3{s.x, s.y, s.z});
    m.Rotate(r);
    m.Offset(t);
    return m;
}

void ExpectNear(const V3& a, const V3& b, double tolerance = 1e-9) {
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

// The parts of a decomposition, put together again in the stated order.
M Recompose(const AffineParts& p) {
    M m = {};
    m.SetRotate(p.u);
    m.Scale(p.k);
    Quaternion back = p.u;
    back.Invert();
    m.Rotate(back);
    m.Scale(V3f{p.f, p.f, p.f});
    m.Rotate(p.q);
    m.Offset(p.t);
    return m;
}

TEST(Math, StepsApplyInOrderAfterWhatTheMatrixDid) {
    M m = {};
    m.IdentityMatrix();
    m.Offset(V3{1, 0, 0});
    m.RotateZ(kPi / 2);
    m.Scale(V3{2, 3, 4});
    ExpectNear(m.PointTransform(V3{0, 0, 0}), {0, 3, 0}, 1e-6);
    ExpectNear(m.VectorTransform(V3{1, 0, 0}), {0, 3, 0}, 1e-6);

    // Right-handed: X to Y about Z, Y to Z about X, Z to X about Y.
    M turn = Rotation({0, 0, 1, kPi / 2});
    ExpectNear(turn.PointTransform(V3{1, 0, 0}), {0, 1, 0}, 1e-6);
    turn.IdentityMatrix();
    turn.RotateX(kPi / 2);
    ExpectNear(turn.PointTransform(V3{0, 1, 0}), {0, 0, 1}, 1e-6);
    turn.IdentityMatrix();
    turn.RotateY(kPi / 2);
    ExpectNear(turn.PointTransform(V3{0, 0, 1}), {1, 0, 0}, 1e-6);
}

TEST(Math, ProductsInversesAndRelativeTransforms) {
    Random random;
    for (int i = 0; i < 200; ++i) {
        const M a = Trs(random.Vector(-5, 5), random.Turn(), random.Vector(0.2f, 3));
        const M b = Trs(random.Vector(-5, 5), random.Turn(), random.Vector(0.2f, 3));
        const V3 p{1, -2, 3};
        M product;
        product.SetMul(a, b);
        ExpectNear(product.PointTransform(p), b.PointTransform(a.PointTransform(p)));
        M transformed = a;
        transformed.Transform(b);
        EXPECT_TRUE(transformed.Equal(product, 0));

        M fromBToA;
        fromBToA.SetM2(a, b);
        ExpectNear(fromBToA.PointTransform(b.PointTransform(p)), a.PointTransform(p), 1e-8);
        M local;
        local.SetLocalMatrix(a, b);
        ExpectNear(a.PointTransform(local.PointTransform(p)), b.PointTransform(p), 1e-8);

        const Quaternion qa(random.Turn()), qb(random.Turn());
        M both;
        both.SetRotate(qa);
        both.Rotate(qb);
        M one;
        one.SetRotate(qa * qb);
        EXPECT_TRUE(both.Equal(one, 1e-6));
    }
    M flat = Trs({1, 2, 3}, {0, 0, 1, 1}, {0, 1, 1});
    flat.Invert();
    EXPECT_TRUE(flat.IsIdentity(0));
}

TEST(Math, FlipExchangesYAndZOnBothSides) {
    Random random;
    const auto exchange = [](const V3& v) { return V3{v.x, v.z, v.y}; };
    for (int i = 0; i < 50; ++i) {
        const M m = Trs(random.Vector(-5, 5), random.Turn(), random.Vector(0.2f, 3));
        M flipped = m;
        flipped.Flip();
        const V3 p{1, 2, 3};
        ExpectNear(flipped.PointTransform(exchange(p)), exchange(m.PointTransform(p)));

        Quaternion q(random.Turn());
        M before;
        before.SetRotate(q);
        before.Flip();
        q.Flip();
        M after;
        after.SetRotate(q);
        EXPECT_TRUE(before.Equal(after, 1e-6));
    }
}

TEST(Math, DecompositionRecomposes) {
    Random random;
    for (int i = 0; i < 500; ++i) {
        M m = Trs(random.Vector(-9, 9), random.Turn(), random.Vector(-2, 2));
        if (i % 2 == 0) m.Transform(Trs(random.Vector(-9, 9), random.Turn(), random.Vector(0.2f, 3)));
        AffineParts parts;
        m.AffineDecompose(parts);
        EXPECT_TRUE(Recompose(parts).Equal(m, 2e-4)) << i;
        EXPECT_TRUE(parts.k.x >= 0 && parts.k.y >= 0 && parts.k.z >= 0);
    }
}

TEST(Math, ScaleAlongTheAxesHasNoStretchRotation) {
    Random random;
    for (int i = 0; i < 500; ++i) {
        // Two pure rotations: a naive decomposition finds eigenvectors in rounding noise.
        M m = Rotation(random.Turn());
        m.Rotate(random.Turn());
        AffineParts parts;
        m.AffineDecompose(parts);
        EXPECT_EQ(parts.u, Quaternion());

        const V3f scale = random.Vector(0.1f, 10);
        Trs({1, 2, 3}, random.Turn(), scale).AffineDecompose(parts);
        EXPECT_EQ(parts.u, Quaternion());
        EXPECT_NEAR(parts.k.x, scale.x, 1e-5);
        EXPECT_NEAR(parts.k.y, scale.y, 1e-5);
        EXPECT_NEAR(parts.k.z, scale.z, 1e-5);
    }
    // A scale of nearly zero, as an animated node has, keeps its rotation.
    AffineParts parts;
    const AngleAxis turn{0, 0.6f, 0.8f, 1.25f};
    Trs({}, turn, {1e-6f, 1e-6f, 1e-6f}).AffineDecompose(parts);
    EXPECT_NEAR(AngleAxis(parts.q).angle, 1.25f, 1e-5);
    Trs({}, turn, {1, 1, 0}).AffineDecompose(parts);
    EXPECT_NEAR(AngleAxis(parts.q).angle, 1.25f, 1e-5);
    EXPECT_EQ(parts.k.z, 0.0f);
    Trs({}, turn, {0, 0, 0}).AffineDecompose(parts);
    EXPECT_EQ(parts.q, Quaternion());
    EXPECT_EQ(parts.k, V3f());
}

TEST(Math, TurnedScaleShowsAsStretchRotation) {
    M m = Rotation({0, 0, 1, 0.3f});
    m.Scale(V3{3, 1, 1});
    m.Rotate(AngleAxis(0, 0, 1, -0.3f));
    V3f t, r, s, stretch;
    vl::Vector4<float> perspective;
    EXPECT_TRUE(m.Decompose(t, r, s, stretch, perspective));
    EXPECT_NEAR(stretch.z, 0.3, 1e-6);
    EXPECT_NEAR(s.x, 3, 1e-6);
    EXPECT_NEAR(r.z, 0, 1e-6);
}

TEST(Math, SmallResultsAreExact) {
    Random random;
    for (int i = 0; i < 1000; ++i) {
        const M w = Trs(random.Vector(-5, 5), random.Turn(), random.Vector(0.3f, 3));
        M inverse = w;
        inverse.Invert();
        M product;
        product.SetMul(w, inverse);
        AffineParts parts;
        product.AffineDecompose(parts);
        EXPECT_EQ(parts.k, (V3f{1, 1, 1}));
        EXPECT_EQ(parts.f, 1.0f);

        const M orientation = Rotation(random.Turn());
        M none;
        none.SetM2(orientation, orientation);
        EXPECT_EQ(AngleAxis(none), AngleAxis());
    }
    EXPECT_EQ(AngleAxis(V3f()), AngleAxis());
    // Angles near pi and near 0 keep their digits.
    for (const float angle : {1e-4f, 1e-3f, 3.1415f, 3.14159f}) {
        EXPECT_NEAR(AngleAxis(Rotation({0.6f, 0, 0.8f, angle})).angle, angle, 1e-6f);
    }
}

TEST(Math, InterpolationTakesTheShorterArc) {
    const Quaternion a(AngleAxis(0, 0, 1, 0.2f));
    Quaternion b(AngleAxis(0, 0, 1, 1.2f));
    const Quaternion middle(0.25f, a, b, 0);
    EXPECT_NEAR(AngleAxis(middle).angle, 0.45f, 1e-6);
    b = Quaternion(-b.x, -b.y, -b.z, -b.w);
    EXPECT_NEAR(AngleAxis(Quaternion(0.25f, a, b, 0)).angle, 0.45f, 1e-6);
    EXPECT_EQ(Quaternion(0.3f, a, a, 0), a);
}

}  // namespace
