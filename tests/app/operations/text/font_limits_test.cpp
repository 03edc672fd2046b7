// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <stdexcept>

#include "app/operations/text/text_check.h"
#include "app/services/font_file.h"
#include "base/error.h"
#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

TEST(FontFile, TakesPrecedenceOverInstalledFonts) {
    const auto width = [](const TextFont& font) {
        return BoxOf(Draw(u"H", TextStyle::kOutline, {}, font).geometry.points).high.x;
    };
    const float regular = width({u"Liberation Sans Narrow"});
    const float bold = width({u"Liberation Sans Narrow", -12, 700});
    ASSERT_NE(regular, bold);
    EXPECT_EQ(AddFontFile("/usr/share/fonts/truetype/liberation/LiberationSansNarrow-Bold.ttf").weight, 700);
    EXPECT_EQ(width({u"Liberation Sans Narrow"}), bold);
}

TEST(FontFile, IsNotADevice) {
    EXPECT_THROW(AddFontFile("/dev/zero"), Error);
}

TEST(TextCheck, RefusesHeightsWithoutOutlines) {
    EXPECT_THROW(CheckFontText(u"A", {u"DejaVu Sans", -20000}), std::runtime_error);
}

}  // namespace
}  // namespace zr
