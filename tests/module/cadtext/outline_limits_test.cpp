// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/module/cadtext/text_kit.h"

namespace {

// Coordinates beyond what the native form of an outline holds.
TEST(OutlineText, IsEmptyWhereTheSystemRefuses) {
    TestHost host;
    EXPECT_EQ(Outlines(u"O", Font(u"DejaVu Sans", -10000))->GetContourCount(), 0);
}

}  // namespace
