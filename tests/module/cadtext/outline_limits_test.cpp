// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/module/cadtext/text_kit.h"

namespace {

// Coordinates outside the range of the native outline format.
TEST(OutlineText, IsEmptyWhereTheSystemRefuses) {
    TestHost host;
    EXPECT_EQ(Outlines(u"O", Font(u"DejaVu Sans", -10000))->GetContourCount(), 0);
}

}  // namespace
