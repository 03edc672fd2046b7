// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/platform/graphics/outline_kit.h"

// Where these calls are more exact than the system's, or do less.
namespace {

TEST(GlyphOutline, IsNotFittedToTheGrid) {
    // DejaVu Sans has 2048 units an em; its A is 1401 wide and spans 16 to 1384, 0 to 1493.
    const Screen screen(Record(u"DejaVu Sans", -120));
    GLYPHMETRICS metrics{};
    screen.Outline('A', metrics);
    EXPECT_EQ(metrics.gmCellIncX, 82);
    EXPECT_EQ(metrics.gmptGlyphOrigin.x, 0);
    EXPECT_EQ(metrics.gmptGlyphOrigin.y, 88);
    EXPECT_EQ(metrics.gmBlackBoxX, 82u);
    EXPECT_EQ(metrics.gmBlackBoxY, 88u);

    EXPECT_TRUE(screen.Outline(' ', metrics).empty());
    EXPECT_EQ(metrics.gmCellIncX, 38);  // 651 units
}

TEST(GlyphOutline, RefusesUnsupportedRequests) {
    GLYPHMETRICS metrics{};
    const Screen big(Record(u"DejaVu Sans", -100000));
    EXPECT_EQ(GetGlyphOutlineA(big.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);

    const Screen screen(Record(u"DejaVu Sans", -120));
    const MAT2 turned{{0, 0}, {0, 1}, {0, -1}, {0, 0}};
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &turned), GDI_ERROR);
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', 0, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);

    const HDC bare = GetDC(nullptr);
    EXPECT_EQ(GetGlyphOutlineA(bare, 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity), GDI_ERROR);
    EXPECT_EQ(SelectObject(bare, nullptr), nullptr);
    ReleaseDC(nullptr, bare);
}

}  // namespace
