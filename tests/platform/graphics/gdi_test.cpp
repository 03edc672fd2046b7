// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <set>
#include <thread>
#include <utility>

#include "tests/platform/graphics/outline_kit.h"

namespace {

struct FontOfTable {
    const char16_t* face;
    LONG weight;
};

constexpr FontOfTable kFonts[] = {{u"DejaVu Sans", 0}, {u"DejaVu Serif", FW_BOLD}, {u"Liberation Sans", 0}};

// Metrics of the printable characters from a renderer that fits outlines to the grid.
struct Metrics {
    int font;
    int height;
    UINT character;
    int advance, left, top, width, rows;
};

constexpr Metrics kMetrics[] = {
#include "tests/platform/graphics/glyph_metrics.inc"
};

TEST(GlyphOutline, MetricsAgreeWithinTheGrid) {
    for (const Metrics& expected : kMetrics) {
        const FontOfTable& font = kFonts[expected.font];
        SCOPED_TRACE(testing::Message() << "font " << expected.font << ", height " << expected.height
                                        << ", character " << static_cast<char>(expected.character));
        GLYPHMETRICS metrics{};
        Screen(Record(font.face, expected.height, font.weight)).Outline(expected.character, metrics);
        ASSERT_NEAR(metrics.gmCellIncX, expected.advance, 1);
        ASSERT_NEAR(metrics.gmptGlyphOrigin.x, expected.left, 2);
        ASSERT_NEAR(metrics.gmptGlyphOrigin.y, expected.top, 2);
        ASSERT_NEAR(metrics.gmptGlyphOrigin.x + static_cast<int>(metrics.gmBlackBoxX),
                    expected.left + expected.width, 2);
        ASSERT_NEAR(metrics.gmptGlyphOrigin.y - static_cast<int>(metrics.gmBlackBoxY),
                    expected.top - expected.rows, 2);
    }
}

TEST(GlyphOutline, HeightIsOfTheEmOrOfTheCell) {
    EXPECT_EQ(Screen(Record(u"DejaVu Sans", -2048)).Advance('A'), 1401);
    EXPECT_EQ(Screen(Record(u"DejaVu Sans", 1901 + 483)).Advance('A'), 1401);
    EXPECT_NEAR(Screen(Record(u"DejaVu Sans", 0)).Advance('A'), 11, 1);  // 16 to the em
}

TEST(GlyphOutline, RefusesABufferThatIsTooSmall) {
    GLYPHMETRICS metrics{};
    const Screen screen(Record(u"DejaVu Sans", -120));
    const DWORD size = GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, 0, nullptr, &kIdentity);
    std::vector<BYTE> bytes(size - 1);
    EXPECT_EQ(GetGlyphOutlineA(screen.Dc(), 'A', GGO_NATIVE, &metrics, size - 1, bytes.data(), &kIdentity),
              GDI_ERROR);
}

TEST(Fonts, AnUnknownNameSelectsAnotherFamilyAndSaysSo) {
    const Screen screen(Record(u"No Such Family", -12));
    ASSERT_TRUE(screen.HasFont());
    EXPECT_NE(screen.Face(), u"No Such Family");
    EXPECT_FALSE(screen.Face().empty());
    // One of several names of a family is as good as its first.
    EXPECT_EQ(Screen(Record(u"dejavu sans condensed", -12)).Face(), u"DejaVu Sans Condensed");
}

TEST(Fonts, ACharacterTheFontLacksIsMarkedAndDrawnAsReplacement) {
    const Screen screen(Record(u"Liberation Sans", -120));
    WORD glyphs[3];
    ASSERT_EQ(GetGlyphIndicesW(screen.Dc(), platform::Wide(u"A\u4E00\xD83D"), 3, glyphs,
                               GGI_MARK_NONEXISTING_GLYPHS),
              3u);
    EXPECT_NE(glyphs[0], 0xFFFF);
    EXPECT_EQ(glyphs[1], 0xFFFF);
    EXPECT_EQ(glyphs[2], 0xFFFF);
    GLYPHMETRICS metrics{};
    EXPECT_FALSE(screen.Outline(0x4E00, metrics).empty());
    EXPECT_GT(metrics.gmCellIncX, 0);
}

TEST(Fonts, WeightAndSlantSelectTheFaceOrAreSynthesised) {
    EXPECT_LT(Screen(Record(u"DejaVu Sans", -480)).Advance('A'),
              Screen(Record(u"DejaVu Sans", -480, FW_BOLD)).Advance('A'));

    // Cantarell has no italic: the upright outline is sheared.
    GLYPHMETRICS metrics{};
    const auto upright = SampleNative(Screen(Record(u"Cantarell", -480)).Outline('l', metrics));
    const auto slanted = SampleNative(Screen(Record(u"Cantarell", -480, 0, true)).Outline('l', metrics));
    ASSERT_EQ(upright.size(), 1u);
    ASSERT_EQ(slanted.size(), 1u);
    Contour sheared = upright[0];
    for (Point& p : sheared) p.x += 0.25 * p.y;
    EXPECT_LT(Deviation(sheared, slanted[0]), 1);  // rounded to the font's own units
    EXPECT_LT(Deviation(slanted[0], sheared), 1);
    EXPECT_GT(Deviation(upright[0], slanted[0]), 20);
}

TEST(Fonts, ThreadsShareAFace) {
    int widths[4] = {};
    std::vector<std::thread> threads;
    for (int& width : widths) {
        threads.emplace_back([&width] {
            for (UINT c = 33; c <= 126; ++c) width += Screen(Record(u"Liberation Serif", -120)).Advance(c);
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_GT(widths[0], 94 * 20);
    for (const int width : widths) EXPECT_EQ(width, widths[0]);
}

struct FoundStyles {
    std::set<std::pair<LONG, bool>> styles;
    int left;
};

int CALLBACK NoteStyle(const LOGFONTW* font, const TEXTMETRICW*, DWORD, LPARAM user) {
    auto& into = *reinterpret_cast<FoundStyles*>(user);
    into.styles.insert({font->lfWeight, font->lfItalic != 0});
    return --into.left > 0;
}

std::set<std::pair<LONG, bool>> StylesOf(const char16_t* family, int most) {
    FoundStyles found{{}, most};
    LOGFONTW record = Record(family, 0);
    record.lfCharSet = DEFAULT_CHARSET;
    const HDC dc = GetDC(nullptr);
    EnumFontFamiliesExW(dc, &record, NoteStyle, reinterpret_cast<LPARAM>(&found), 0);
    ReleaseDC(nullptr, dc);
    return found.styles;
}

TEST(Fonts, AreEnumeratedByFamily) {
    EXPECT_EQ(StylesOf(u"DejaVu Serif Condensed", 100),
              (std::set<std::pair<LONG, bool>>{{400, false}, {400, true}, {700, false}, {700, true}}));
    EXPECT_EQ(StylesOf(u"DejaVu Serif Condensed", 1).size(), 1u);
    EXPECT_TRUE(StylesOf(u"No Such Font", 100).empty());
    EXPECT_EQ(AddFontResourceExW(platform::Wide(u"no such file.ttf"), FR_PRIVATE, nullptr), 0);
}

TEST(MulDivTest, RoundsHalfAwayFromZero) {
    EXPECT_EQ(MulDiv(-12, 72, 96), -9);
    EXPECT_EQ(MulDiv(-10, 72, 96), -8);  // -7.5
    EXPECT_EQ(MulDiv(10, 72, 96), 8);
    EXPECT_EQ(MulDiv(10, 72, -96), -8);
    EXPECT_EQ(MulDiv(2147483647, 2147483647, 2147483647), 2147483647);
    EXPECT_EQ(MulDiv(2147483647, 2, 1), -1);
    EXPECT_EQ(MulDiv(1, 1, 0), -1);
}

}  // namespace
