// SPDX-License-Identifier: MIT
#include "app/scene/curve_cut.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace zr {
namespace {

using enum vl::zr::KeyInterpolation;

constexpr float kInfinity = std::numeric_limits<float>::infinity();

TEST(CurveCut, EndsWithTheValueShownThere) {
    const Curve linear{kInterpolationLinear, {0, 4}, {0, 4}};
    EXPECT_EQ(Cut(linear, 1, 3, false), (Curve{kInterpolationLinear, {1, 3}, {1, 3}}));
    EXPECT_EQ(Cut(linear, -kInfinity, 3, false), (Curve{kInterpolationLinear, {0, 3}, {0, 3}}));
    EXPECT_EQ(Cut(linear, 4, kInfinity, false), (Curve{kInterpolationLinear, {4}, {4}}));
    EXPECT_EQ(Cut(linear, 5, 6, false), (Curve{kInterpolationLinear, {5, 6}, {4, 4}}));
    const Curve step{kInterpolationStep, {1, 2, 3}, {5, 6, 7}};
    EXPECT_EQ(Cut(step, 1.5F, 3, false), (Curve{kInterpolationStep, {1.5F, 2, 3}, {5, 6, 7}}));
    EXPECT_EQ(Cut(step, 0, 1, false), (Curve{kInterpolationStep, {0, 1}, {5, 5}}));
    EXPECT_EQ(Cut({kInterpolationLinear, {2}, {9}}, 1, 4, false), (Curve{kInterpolationLinear, {1}, {9}}));
}

// x^3 from 0 to 2, with its slopes 3x^2.
TEST(CurveCut, CubicSegmentIsUnchanged) {
    const Curve cubic{kInterpolationCubic, {0, 2}, {0, 0, 0, 12, 8, 12}};
    EXPECT_EQ(Cut(cubic, 0.5F, 1, false),
              (Curve{kInterpolationCubic, {0.5F, 1}, {0.75F, 0.125F, 0.75F, 3, 1, 3}}));
    // Outside its keys it is constant, whatever their slopes.
    EXPECT_EQ(Cut(cubic, -1, 3, false),
              (Curve{kInterpolationCubic, {-1, 0, 2, 3}, {0, 0, 0, 0, 0, 0, 12, 8, 0, 0, 8, 0}}));
    EXPECT_EQ(Cut(cubic, 2, kInfinity, false), (Curve{kInterpolationLinear, {2}, {8}}));
}

TEST(CurveCut, CubicRotationKeepsItsPathWithUnitKeys) {
    const auto half = static_cast<float>(std::sqrt(0.5));
    const Curve turn{kInterpolationCubic, {0, 1, 2}, {0, 0, 0, 0, 0,    0,    0,    1,    0, 0, 3, 0,  //
                                                      0, 1, 0, 0, 0,    0,    half, half, 0, 1, 0, 0,  //
                                                      0, 0, 0, 0, half, half, 0,    0,    0, 0, 0, 0}};
    const Curve part = Cut(turn, 0.3F, 1.6F, true);
    EXPECT_EQ(part.times.front(), 0.3F);
    EXPECT_EQ(part.times.back(), 1.6F);
    EXPECT_LT(part.times.size(), 60U);
    for (std::size_t key = 0; key < part.times.size(); ++key) {
        const float* q = part.Value(key);
        EXPECT_NEAR(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3], 1, 1e-6);
    }
    for (int i = 0; i <= 130; ++i) {
        const float time = 0.3F + 0.01F * static_cast<float>(i);
        EXPECT_GT(std::fabs(kernix::EvaluateRotation(turn, time).Dot(kernix::EvaluateRotation(part, time))),
                  1 - 1e-11)
            << time;
    }
}

TEST(CurveCut, SamplesKeepStepsWhereTheyAre) {
    const float third = 1.0F / 3, late = std::nextafter(third, 1.0F);
    const Curve step{kInterpolationStep, {0, late}, {5, 6}};
    EXPECT_EQ(SampledAt(step, {0, third, 1}, 1e-4, false),
              (Curve{kInterpolationStep, {0, third, 1}, {5, 6, 6}}));
    const Curve cubic{kInterpolationCubic, {0, 2}, {0, 0, 0, 12, 8, 12}};
    EXPECT_EQ(SampledAt(cubic, {0.5F, 1}, 0, false), (Curve{kInterpolationLinear, {0.5F, 1}, {0.125F, 1}}));
}

}  // namespace
}  // namespace zr
