// SPDX-License-Identifier: MIT
#include "app/operations/reduce/thin_track.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

#include "app/operations/compare/key_curve.h"

namespace zr::reduce {
namespace {

using compare::KeyCurve;

// The greatest distance between two curves (of rotations: angle) at all keys and at times between.
double Distance(const Keys& a, const Keys& b, std::size_t width, bool isRotation) {
    const KeyCurve given(a.times, a.values, width), other(b.times, b.values, width);
    double greatest = 0;
    std::array<double, 4> x{}, y{};
    for (std::size_t key = 0; key + 1 < a.times.size(); ++key) {
        for (int part = 0; part < 8; ++part) {
            const double from = static_cast<double>(a.times[key]), to = static_cast<double>(a.times[key + 1]);
            const double time = from + (to - from) * part / 8;
            given.At(time, isRotation, std::span(x).first(width));
            other.At(time, isRotation, std::span(y).first(width));
            double square = 0, cosine = 0;
            for (std::size_t i = 0; i < width; ++i) {
                square += (x[i] - y[i]) * (x[i] - y[i]);
                cosine += x[i] * y[i];
            }
            const double angle = 2 * std::acos(std::min(1.0, std::abs(cosine)));
            greatest = std::max(greatest, isRotation ? angle : std::sqrt(square));
        }
    }
    return greatest;
}

void ExpectSameEnds(const Keys& given, const Keys& thin, std::size_t width) {
    EXPECT_EQ(thin.times.front(), given.times.front());
    EXPECT_EQ(thin.times.back(), given.times.back());
    for (std::size_t i = 0; i < width; ++i) {
        EXPECT_EQ(thin.values[i], given.values[i]);
        EXPECT_EQ(thin.values[thin.values.size() - 1 - i], given.values[given.values.size() - 1 - i]);
    }
    for (std::size_t key = 0; key + 1 < thin.times.size(); ++key)
        EXPECT_LT(thin.times[key], thin.times[key + 1]);
}

// Waves of several lengths with noise and a jump in the middle, at irregular times.
Keys RandomVectors(std::mt19937& random, std::size_t count) {
    Keys keys;
    std::uniform_real_distribution<float> part(0, 1);
    const float slow = part(random), quick = 5 * part(random), noise = part(random) < 0.5f ? 0.0f : 0.01f;
    float time = 0;
    for (std::size_t i = 0; i < count; ++i) {
        time += 0.01f + 0.05f * part(random);
        const float jump = i > count / 2 ? 3.0f : 0.0f;
        keys.times.push_back(time);
        for (const float value : {std::sin(slow * time) + jump, 0.3f * std::cos(quick * time), time})
            keys.values.push_back(value + noise * part(random));
    }
    return keys;
}

Keys RandomTurns(std::mt19937& random, std::size_t count) {
    Keys keys;
    std::uniform_real_distribution<double> part(0, 1);
    std::array<double, 4> at{0, 0, 0, 1};
    std::array<double, 3> axis{part(random), part(random), part(random) + 0.1};
    const double pace = 0.4 * part(random);
    for (std::size_t i = 0; i < count; ++i) {
        keys.times.push_back(static_cast<float>(i) / 30);
        // Every other key is stored with the opposite sign, and some turn by nearly half a turn.
        for (const double number : at)
            keys.values.push_back(static_cast<float>(i % 2 == 0 ? number : -number));
        for (double& number : axis) number += 0.05 * (part(random) - 0.5);
        const double length = std::hypot(axis[0], axis[1], axis[2]);
        const double angle = i % 40 == 39 ? 3.1 : pace, s = std::sin(angle / 2) / length,
                     w = std::cos(angle / 2);
        const double x = axis[0] * s, y = axis[1] * s, z = axis[2] * s;
        at = {at[3] * x + at[0] * w + at[1] * z - at[2] * y, at[3] * y + at[1] * w + at[2] * x - at[0] * z,
              at[3] * z + at[2] * w + at[0] * y - at[1] * x, at[3] * w - at[0] * x - at[1] * y - at[2] * z};
    }
    return keys;
}

TEST(ThinTrack, VectorsStayWithinTheToleranceAtEveryTime) {
    std::mt19937 random(1);
    for (int i = 0; i < 200; ++i) {
        const Keys given = RandomVectors(random, 2 + random() % 300);
        const double tolerance = std::pow(10.0, -4.0 + 0.5 * (i % 8));
        const Keys thin = ThinnedVectors(given, 3, tolerance);
        EXPECT_LE(Distance(given, thin, 3, false), tolerance * 1.001 + 1e-6);
        ExpectSameEnds(given, thin, 3);
    }
}

TEST(ThinTrack, RotationsStayWithinTheAngleAndKeepTheDirectionOfEveryTurn) {
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        const Keys given = RandomTurns(random, 2 + random() % 300);
        const double tolerance = std::pow(10.0, -3.5 + 0.5 * (i % 6));
        const Keys thin = ThinnedRotations(given, tolerance);
        EXPECT_LE(Distance(given, thin, 4, true), tolerance * 1.02 + 1e-3 * tolerance + 1e-6);
        ExpectSameEnds(given, thin, 4);
    }
}

TEST(ThinTrack, StraightMotionKeepsItsEndsAndFittedPiecesReachFurther) {
    Keys straight, wave;
    for (int i = 0; i <= 300; ++i) {
        const float time = static_cast<float>(i) / 30;
        straight.times.push_back(time);
        straight.values.insert(straight.values.end(), {2 * time, 1, -time});
        wave.times.push_back(time);
        wave.values.push_back(std::sin(time));
    }
    EXPECT_EQ(ThinnedVectors(straight, 3, 1e-4).times, (std::vector<float>{0, 10}));
    // A chord of the wave leaves it by an eighth of the square of its length times its curvature, a fitted
    // piece by a sixteenth: 1.6 waves need at least 33 and 24 pieces for a thousandth. Rounding down to keys
    // costs some.
    EXPECT_LE(ThinnedVectors(wave, 1, 1e-2).times.size(), 32U);
}

}  // namespace
}  // namespace zr::reduce
