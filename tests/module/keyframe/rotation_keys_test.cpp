// SPDX-License-Identifier: MIT
#include "module/keyframe/rotation_keys.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

constexpr float kPi = std::numbers::pi_v<float>;
constexpr std::uint32_t kOrderXyz = 0 | 1 << 2 | 2 << 4;

ExportRotationKey StepKey(float time, const vl::AngleAxis& step) {
    ExportRotationKey key;
    key.fTime = time;
    key.aaValue = step;
    return key;
}

ExportRotationKey EulerKey(float time, const vl::Vector3<float>& angles, std::uint32_t order = kOrderXyz) {
    ExportRotationKey key;
    key.fTime = time;
    key.vEuler = angles;
    key.dwOrder = order;
    return key;
}

ExportRotationKey OrientationKey(float time, const vl::Quaternion& q) {
    ExportRotationKey key;
    key.fTime = time;
    key.qValue = q;
    return key;
}

// The angle between two orientations.
double Distance(const vl::Quaternion& a, const vl::Quaternion& b) {
    const auto chord = [&](double sign) {
        return std::hypot(std::hypot(a.x - sign * b.x, a.y - sign * b.y),
                          std::hypot(a.z - sign * b.z, a.w - sign * b.w));
    };
    return 4 * std::asin(std::min(chord(1), chord(-1)) / 2);
}

// The rounding of a hundred or so products in single precision.
constexpr double kSame = 1e-4;

void ExpectSame(const vl::Quaternion& actual, const vl::Quaternion& expected) {
    EXPECT_LT(Distance(actual, expected), kSame)
        << actual.x << ' ' << actual.y << ' ' << actual.z << ' ' << actual.w;
}

TEST(RotationKeys, SplitsLargeSteps) {
    ExportRotationKey last = StepKey(30, {0, 0, 1, 4});
    last.fParams[0] = 2;
    const auto keys = zrt::OrientationsFromSteps({StepKey(0, {1, 0, 0, 0.5f}), last});
    ASSERT_EQ(keys.size(), 4u);
    const vl::Quaternion first(vl::AngleAxis(1, 0, 0, 0.5f));
    const float times[] = {0, 10, 20, 30};
    for (int i = 0; i < 4; ++i) {
        EXPECT_FLOAT_EQ(keys[i].fTime, times[i]);
        ExpectSame(keys[i].qValue, first * vl::Quaternion(vl::AngleAxis(0, 0, 1, 4.0f * i / 3)));
    }
    EXPECT_EQ(keys[1].aaValue, vl::AngleAxis());
    EXPECT_EQ(keys[2].fParams[0], 0);
    EXPECT_EQ(keys[3].fParams[0], 2);

    // The step back takes the same path.
    const auto back = zrt::OrientationsFromSteps({StepKey(0, {0, 0, 1, 0}), StepKey(3, {0, 0, 1, -4})});
    ASSERT_EQ(back.size(), 4u);
    ExpectSame(back[1].qValue, vl::Quaternion(vl::AngleAxis(0, 0, 1, -4.0f / 3)));
}

TEST(RotationKeys, SplitsLargeEulerSteps) {
    const auto keys = zrt::OrientationsFromEuler({EulerKey(0, {0, 0, 0}), EulerKey(10, {3.5f, 0.2f, 0})});
    ASSERT_EQ(keys.size(), 4u);
    EXPECT_FLOAT_EQ(keys[1].fTime, 10.0f / 3);
    EXPECT_FLOAT_EQ(keys[2].fTime, 20.0f / 3);
    ExpectSame(keys[1].qValue, zrt::EulerToQuaternion({3.5f / 3, 0.2f / 3, 0}, kOrderXyz));
    ExpectSame(keys[2].qValue, zrt::EulerToQuaternion({7.0f / 3, 0.4f / 3, 0}, kOrderXyz));
    EXPECT_EQ(keys[1].vEuler, vl::Vector3<float>());

    // Nothing is inserted before the first key of a track, whatever its angles.
    EXPECT_EQ(zrt::OrientationsFromEuler({EulerKey(5, {9, 0, 0})}).size(), 1u);
}

TEST(RotationKeys, StepLimitIsTheFloatQuarterTurn) {
    const auto inserted = [](float angle) {
        return zrt::OrientationsFromSteps({StepKey(0, {}), StepKey(1, {0, 1, 0, angle})}).size() - 2;
    };
    const float quarter = kPi / 2;
    EXPECT_EQ(inserted(quarter), 1u);
    EXPECT_EQ(inserted(std::nextafter(quarter, 0.0f)), 0u);
    EXPECT_EQ(inserted(-quarter), 1u);
}

TEST(RotationKeys, BrokenAnglesInsertNothing) {
    for (const float angle : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity(), 1e30f}) {
        EXPECT_EQ(zrt::OrientationsFromSteps({StepKey(0, {}), StepKey(1, {0, 1, 0, angle})}).size(), 2u);
        EXPECT_EQ(zrt::OrientationsFromEuler({EulerKey(0, {}), EulerKey(1, {angle, angle, 0})}).size(), 2u);
    }
}

TEST(RotationKeys, EulerOrderIsAppliedLowestFirst) {
    const vl::Vector3<float> angles{0.3f, 0.5f, 0.7f};
    const vl::Quaternion x(vl::AngleAxis(1, 0, 0, 0.3f));
    const vl::Quaternion y(vl::AngleAxis(0, 1, 0, 0.5f));
    const vl::Quaternion z(vl::AngleAxis(0, 0, 1, 0.7f));
    ExpectSame(zrt::EulerToQuaternion(angles, kOrderXyz), x * y * z);
    ExpectSame(zrt::EulerToQuaternion(angles, 2 | 0 << 2 | 1 << 4), z * x * y);
    ExpectSame(zrt::EulerToQuaternion(angles, 1 | 3 << 2 | 3 << 4), y);
}

TEST(RotationKeys, StepsLeadFromKeyToKey) {
    std::mt19937 random(7);
    std::normal_distribution<float> normal;
    zrt::RotationKeys keys;
    for (int i = 0; i < 500; ++i) {
        vl::Quaternion q(normal(random), normal(random), normal(random), normal(random));
        const float length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
        keys.push_back(
            OrientationKey(static_cast<float>(i), {q.x / length, q.y / length, q.z / length, q.w / length}));
        if (i % 7 == 0) keys.push_back(keys.back());
    }
    zrt::AddSteps(keys);
    ExpectSame(vl::Quaternion(keys[0].aaValue), keys[0].qValue);
    for (std::size_t i = 1; i < keys.size(); ++i) {
        const vl::AngleAxis& step = keys[i].aaValue;
        EXPECT_LE(step.angle, kPi);
        EXPECT_GE(step.angle, 0);
        ExpectSame(keys[i - 1].qValue * vl::Quaternion(step), keys[i].qValue);
        // The merge of relative rotations looks for exactly this.
        if (keys[i].qValue == keys[i - 1].qValue) {
            EXPECT_EQ(step, vl::AngleAxis());
        }
    }
}

TEST(RotationKeys, LongStepsTurnTheShortWay) {
    zrt::RotationKeys keys{OrientationKey(0, {}),
                           OrientationKey(1, vl::Quaternion(vl::AngleAxis(0, 0, 1, 3.0f))),
                           OrientationKey(2, vl::Quaternion(vl::AngleAxis(0, 0, 1, 6.5f)))};
    zrt::AddSteps(keys);
    EXPECT_NEAR(keys[1].aaValue.angle, 3.0f, 1e-5);
    EXPECT_NEAR(keys[1].aaValue.z, 1, 1e-5);
    EXPECT_NEAR(keys[2].aaValue.angle, 2 * kPi - 3.5f, 1e-5);
    EXPECT_NEAR(keys[2].aaValue.z, -1, 1e-5);
}

// Whatever the steps, no gap is wider than a quarter turn, the host's keys stay in order with the
// orientations of the plain product, and inserted keys are evenly spaced in time.
TEST(RotationKeys, RandomStepsKeepTheMotion) {
    std::mt19937 random(11);
    std::uniform_real_distribution<float> angle(-20, 20);
    std::normal_distribution<float> normal;
    zrt::RotationKeys steps;
    for (int i = 0; i < 300; ++i) {
        const vl::Vector3<float> v{normal(random), normal(random), normal(random)};
        const float length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
        steps.push_back(
            StepKey(static_cast<float>(i), {v.x / length, v.y / length, v.z / length, angle(random)}));
    }
    const auto keys = zrt::OrientationsFromSteps(steps);
    EXPECT_GT(keys.size(), 1000u);
    vl::Quaternion plain(steps[0].aaValue);
    std::size_t next = 0;
    for (std::size_t i = 0; i < keys.size(); ++i) {
        if (i > 0) {
            EXPECT_LE(Distance(keys[i - 1].qValue, keys[i].qValue), kPi / 2 + kSame);
            EXPECT_GT(keys[i].fTime, keys[i - 1].fTime);
        }
        if (keys[i].fTime != steps[next].fTime) continue;
        if (next > 0) plain = plain * vl::Quaternion(steps[next].aaValue);
        ExpectSame(keys[i].qValue, plain);
        ++next;
    }
    EXPECT_EQ(next, steps.size());
}

}  // namespace
