// SPDX-License-Identifier: MIT
#include "app/services/font_file.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "app/services/font_list.h"
#include "base/error.h"
#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

constexpr char kBoldFile[] = "/usr/share/fonts/truetype/dejavu/DejaVuSans-BoldOblique.ttf";
constexpr char kCubicFile[] = "/usr/share/fonts/opentype/cantarell/Cantarell-Light.otf";

TEST(FontFile, ReadsTheNamesOfItsFont) {
    const FontFileNames bold = ReadFontNames(ReadFile(kBoldFile).View(), "");
    EXPECT_EQ(bold.family, u"DejaVu Sans");
    EXPECT_EQ(bold.weight, 700);
    EXPECT_TRUE(bold.isItalic);
    const FontFileNames light = ReadFontNames(ReadFile(kCubicFile).View(), "");
    EXPECT_EQ(light.family, u"Cantarell Light");
    EXPECT_EQ(light.weight, 300);
    EXPECT_FALSE(light.isItalic);
}

// A font file cut anywhere in its name tables causes an error or yields the rest of a name, but nothing is
// read beyond its end.
TEST(FontFile, ReadsNothingBeyondItsEnd) {
    const FileContent whole = ReadFile(kBoldFile);
    for (std::size_t size = 0; size < 2000; ++size) {
        const std::vector<std::byte> cut(whole.View().begin(),
                                         whole.View().begin() + static_cast<std::ptrdiff_t>(size));
        try {
            ReadFontNames(cut, "cut.ttf");
        } catch (const Error& error) {
            EXPECT_STREQ(error.what(), "cut.ttf: is not a TrueType or OpenType font with a family name");
        }
    }
}

TEST(FontFile, IsRefusedIfItIsNotAFont) {
    const Folder folder;
    std::ofstream(folder / "bad.ttf") << "not a font";
    EXPECT_THROW(AddFontFile(folder / "bad.ttf"), Error);
}

TEST(FontList, ListsFamiliesByRequestableNames) {
    const std::vector<FontFamily> fonts = ListFonts();
    EXPECT_TRUE(std::is_sorted(fonts.begin(), fonts.end(),
                               [](const FontFamily& a, const FontFamily& b) { return a.name < b.name; }));
    const auto find = [&](const char16_t* name) {
        return std::find_if(fonts.begin(), fonts.end(), [&](const FontFamily& f) { return f.name == name; });
    };
    const auto condensed = find(u"DejaVu Sans Condensed");
    ASSERT_NE(condensed, fonts.end());
    ASSERT_EQ(condensed->styles.size(), 4u);
    EXPECT_EQ(condensed->styles[3].name, u"Bold Oblique");
    EXPECT_EQ(condensed->styles[3].weight, 700);
    EXPECT_TRUE(condensed->styles[3].isItalic);
    EXPECT_NE(find(u"Liberation Mono"), fonts.end());
    for (const FontFamily& family : fonts) {
        ASSERT_FALSE(family.styles.empty());
        EXPECT_EQ(SystemFont({family.name, -12, family.styles[0].weight, family.styles[0].isItalic}).Family(),
                  family.name);
    }
}

}  // namespace
}  // namespace zr
