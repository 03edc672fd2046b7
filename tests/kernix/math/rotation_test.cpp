// SPDX-License-Identifier: MIT
#include "kernix/math/rotation.h"

#include <gtest/gtest.h>

#include <numbers>

namespace {

// Near half a turn, each part of the quaternion in turn is the one too small to divide by.
TEST(Rotation, IsRecoveredFromItsRowsForAnyAxisAndAngle) {
    constexpr double kPi = std::numbers::pi;
    for (const double angle : {0.0, 1e-9, 1.0, 2.5, kPi - 1e-9, kPi, kPi + 1e-9, 5.0}) {
        for (int axis = 1; axis < 27; ++axis) {
            const kernix::Rotation turn =
                kernix::Rotation::About(axis % 3 - 1, axis / 3 % 3 - 1, axis / 9 - 1, angle);
            double m[4][4] = {};
            turn.ToRows(m);
            const double rows[3][3] = {
                {m[0][0], m[0][1], m[0][2]}, {m[1][0], m[1][1], m[1][2]}, {m[2][0], m[2][1], m[2][2]}};
            const kernix::Rotation found = kernix::Rotation::FromRows(rows);
            EXPECT_GE(found.w, 0);
            const kernix::Rotation expected = found.Dot(turn) < 0 ? turn.Negated() : turn;
            for (const double off :
                 {found.x - expected.x, found.y - expected.y, found.z - expected.z, found.w - expected.w})
                EXPECT_NEAR(off, 0, 1e-12) << axis << " " << angle;
        }
    }
}

}  // namespace
