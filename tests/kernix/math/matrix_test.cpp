// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>

#include "host/math.h"

namespace {

using M = vl::Matrix4<double>;

M RandomMatrix(std::mt19937& random, bool isAffine) {
    std::uniform_real_distribution<double> element(-2, 2);
    M m;
    for (auto& row : m.m) {
        for (double& value : row) value = element(random);
    }
    if (isAffine) {
        for (int i = 0; i < 4; ++i) m.m[i][3] = i == 3 ? 1 : 0;
    }
    return m;
}

// Affine transforms and projections.
TEST(Matrix, TimesItsInverseIsTheIdentity) {
    std::mt19937 random(5);
    for (int i = 0; i < 200; ++i) {
        const M m = RandomMatrix(random, i % 2 == 0);
        M inverse = m;
        inverse.Invert();
        M product;
        product.SetMul(m, inverse);
        EXPECT_TRUE(product.IsIdentity(1e-6)) << i;
        product.SetMul(inverse, m);
        EXPECT_TRUE(product.IsIdentity(1e-6)) << i;
    }
}

// A row or column that repeats another one, in every place.
TEST(Matrix, WithoutAnInverseBecomesTheIdentity) {
    std::mt19937 random(6);
    for (int from = 0; from < 4; ++from) {
        for (int to = 0; to < 4; ++to) {
            if (from == to) continue;
            M m = RandomMatrix(random, false);
            for (int i = 0; i < 4; ++i) m.m[to][i] = 0;
            m.Invert();
            EXPECT_TRUE(m.IsIdentity(0)) << to;
        }
    }
}

}  // namespace
