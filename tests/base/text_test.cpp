// SPDX-License-Identifier: MIT
#include "base/text.h"

#include <gtest/gtest.h>

#include "base/error.h"

namespace zr {
namespace {

TEST(Text, PrintableTextIsOneLineATerminalShows) {
    const std::string good = "a\\b \"\xC3\xA9\" \xE6\x97\xA5 \xF0\x9F\x98\x80";
    EXPECT_EQ(Printable(good), good);
    EXPECT_EQ(Printable(std::string_view("\0\x1B[2J\n\t\r\x7F", 9)), "\\x00\\x1B[2J\\n\\t\\x0D\\x7F");
    EXPECT_EQ(Printable("\xC2\x85 \xC2\x9B \xC2\xA0"), "\\u0085 \\u009B \xC2\xA0");
    EXPECT_EQ(Printable("\xE2\x80\xAE\xE2\x80\xA8\xE2\x81\xA6\xD8\x9C\xEF\xBB\xBF"),
              "\\u202E\\u2028\\u2066\\u061C\\uFEFF");
    const std::string once = Printable("a\nb\xFF");
    EXPECT_EQ(Printable(once), once);
}

TEST(Text, BytesThatAreNotCharactersAreShownAsBytes) {
    // Two overlong forms, a surrogate, beyond U+10FFFF, truncated, a stray continuation byte.
    EXPECT_EQ(Printable("\xC0\x8A"), "\\xC0\\x8A");
    EXPECT_EQ(Printable("\xE0\x82\x8A"), "\\xE0\\x82\\x8A");
    EXPECT_EQ(Printable("\xED\xA0\x80"), "\\xED\\xA0\\x80");
    EXPECT_EQ(Printable("\xF4\x90\x80\x80"), "\\xF4\\x90\\x80\\x80");
    EXPECT_EQ(Printable("a\xE2\x80"), "a\\xE2\\x80");
    EXPECT_EQ(Printable("\x9B"), "\\x9B");
}

TEST(Text, NumbersAgreeWithTheirNouns) {
    EXPECT_EQ(Counted(1, "mesh"), "1 mesh");
    EXPECT_EQ(Counted(0, "mesh"), "0 meshes");
    EXPECT_EQ(Counted(2, "key"), "2 keys");
    EXPECT_EQ(Counted(1, "face differs", "faces differ"), "1 face differs");
    EXPECT_EQ(Counted(2, "face differs", "faces differ"), "2 faces differ");
}

TEST(Text, NumbersHaveAsManyDigitsAsAreAskedFor) {
    EXPECT_EQ(Short(1.0 / 3), "0.333333");
    EXPECT_EQ(Short(-1234.5, 3), "-1.23e+03");
    EXPECT_EQ(Short(double{0.1F}, 9), "0.100000001");
    EXPECT_EQ(Short(0), "0");
}

TEST(Error, IsOneLineWhateverItsPartsHold) {
    EXPECT_STREQ(Error("a\n.glb", "/x\x1B", "no\x9B").what(), "a\\n.glb: /x\\x1B: no\\x9B");
    EXPECT_STREQ(Error("", "", "text").what(), "text");
    EXPECT_EQ(Error("f", "/a/0", "").Place(), "/a/0");
}

}  // namespace
}  // namespace zr
