// SPDX-License-Identifier: MIT
#include "app/operations/animations/joined_curve.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace zr {
namespace {

using kernix::Curve;
using Values = std::vector<float>;
using vl::zr::kInterpolationCubic;
using vl::zr::kInterpolationLinear;
using vl::zr::kInterpolationStep;

float Before(float time) {
    return std::nextafter(time, -std::numeric_limits<float>::infinity());
}
float After(float time) {
    return std::nextafter(time, std::numeric_limits<float>::infinity());
}

Curve Sequence(const std::vector<Stretch>& stretches, const std::optional<Values>& rest = Values{0}) {
    return InSequence(stretches, rest);
}

TEST(JoinedCurve, RestsWhileOthersPlay) {
    const Curve linear{kInterpolationLinear, {3, 4}, {1, 2}};
    EXPECT_EQ(Sequence({{nullptr, 0}, {&linear, 2}, {nullptr, 5}, {nullptr, 6}}),
              (Curve{kInterpolationLinear, {0, Before(2), 2, 3, 4, Before(5), 5}, {0, 0, 1, 1, 2, 2, 0}}));
    EXPECT_EQ(Sequence({{&linear, 3}}), linear);
    EXPECT_EQ(Sequence({{nullptr, 0}, {&linear, 3}, {nullptr, 5}}, std::nullopt), linear);
    const Curve step{kInterpolationStep, {3, 4}, {0, 2}};
    EXPECT_EQ(Sequence({{nullptr, 0}, {&step, 3}, {nullptr, 4}}),
              (Curve{kInterpolationStep, {3, 4, After(4)}, {0, 2, 0}}));
    // Slopes at the ends would make the curve overshoot outside its keys.
    const Curve cubic{kInterpolationCubic, {1, 2}, {9, 1, 5, 6, 2, 9}};
    EXPECT_EQ(Sequence({{nullptr, 0}, {&cubic, 1}}),
              (Curve{kInterpolationCubic, {0, Before(1), 1, 2}, {0, 0, 0, 0, 0, 0, 0, 1, 5, 6, 2, 0}}));
}

TEST(JoinedCurve, EverySourceShowsItsOwnValues) {
    const Curve first{kInterpolationLinear, {0, 1}, {1, 2}}, equal{kInterpolationLinear, {1, 2}, {2, 3}},
        other{kInterpolationLinear, {1, 2}, {5, 6}}, late{kInterpolationLinear, {3, 4}, {5, 6}};
    EXPECT_EQ(Sequence({{&first, 0}, {&equal, 1}}), (Curve{kInterpolationLinear, {0, 1, 2}, {1, 2, 3}}));
    EXPECT_EQ(Sequence({{&first, 0}, {&other, 1}}),
              (Curve{kInterpolationLinear, {0, 1, After(1), 2}, {1, 2, 5, 6}}));
    EXPECT_EQ(Sequence({{&first, 0}, {&late, 2}}),
              (Curve{kInterpolationLinear, {0, 1, Before(2), 2, 3, 4}, {1, 2, 2, 5, 5, 6}}));
    EXPECT_EQ(Sequence({{&first, 0}, {nullptr, 1}, {&late, 2}}),
              (Curve{kInterpolationLinear, {0, 1, After(1), Before(2), 2, 3, 4}, {1, 2, 0, 0, 5, 5, 6}}));
}

// Whatever the interpolations of the sources, each shows the same as alone, to within a millionth.
TEST(JoinedCurve, PreservesEveryInterpolation) {
    const Curve step{kInterpolationStep, {0, 0.5, 1}, {1, 3, 2}},
        linear{kInterpolationLinear, {2, 2.5, 3}, {4, 5, 1}},
        cubic{kInterpolationCubic, {4, 5}, {7, 1, 2, 3, 4, 7}};
    const std::vector<std::vector<Stretch>> sequences = {
        {{&step, 0}, {&linear, 2}}, {{&step, 0}, {&cubic, 4}}, {{&step, 0}, {&linear, 2}, {&cubic, 4}}};
    for (const std::vector<Stretch>& sequence : sequences) {
        const Curve joined = Sequence(sequence);
        for (const Stretch& stretch : sequence) {
            for (float time = stretch.start; time <= stretch.start + 1; time += 0.0625F) {
                double shown = 0, alone = 0;
                EvaluateNumbers(joined, time, &shown);
                EvaluateNumbers(*stretch.curve, time, &alone);
                EXPECT_NEAR(shown, alone, 1e-6) << time;
            }
        }
    }
}

TEST(JoinedCurve, JoinsCurvesUnlessTheyOverlap) {
    const Curve early{kInterpolationLinear, {0, 1}, {1, 2}}, late{kInterpolationLinear, {1, 2}, {2, 3}},
        between{kInterpolationLinear, {0.5, 1.5}, {8, 9}};
    const Curve* const apart[] = {&late, &early};
    EXPECT_EQ(Joined(apart), (Curve{kInterpolationLinear, {0, 1, 2}, {1, 2, 3}}));
    const Curve* const together[] = {&early, &between};
    EXPECT_EQ(Joined(together), std::nullopt);
    const Curve* const same[] = {&early, &early};
    EXPECT_EQ(Joined(same), std::nullopt);
}

}  // namespace
}  // namespace zr
