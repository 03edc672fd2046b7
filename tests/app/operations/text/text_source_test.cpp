// SPDX-License-Identifier: MIT
#include "app/operations/text/text_source.h"

#include <gtest/gtest.h>

#include "app/operations/text/text_check.h"
#include "base/error.h"
#include "tests/app/operations/text/text_kit.h"

namespace zr {
namespace {

std::string ErrorOf(std::string_view utf8) {
    try {
        DecodeText(utf8, "TEXT");
        return "";
    } catch (const Error& error) {
        return error.what();
    }
}

TEST(TextSource, ReportsTheByteThatIsNotUtf8) {
    using namespace std::string_literals;
    EXPECT_EQ(
        DecodeText("a\xC2\x80\xDF\xBF\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"
                   "b",
                   "TEXT"),
        u"a\u0080\u07FF\u0800\uD7FF\uE000\U00010000\U0010FFFFb");
    for (const char* bad : {"\x80", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80",
                            "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC3",
                            "\xE2\x82", "\xC3(", "\xF0\x9F\x98(", "\xE9t\xE9"}) {
        EXPECT_EQ(ErrorOf("\xC3\xA9x"s + bad), "TEXT: byte 3: the text is not UTF-8");
    }
    EXPECT_EQ(ErrorOf("ab\0c"s), "TEXT: byte 2: the text contains a zero character");
}

TEST(TextSource, ConvertsLineEndsOfFiles) {
    EXPECT_EQ(DecodeTextFile(BytesOf("\xEF\xBB\xBFl\nl\r\n\nm"), "lines.txt"), u"l\r\nl\r\n\r\nm");
    try {
        DecodeTextFile(BytesOf("\xEF\xBB\xBFl\xFF"), "lines.txt");
        FAIL();
    } catch (const Error& error) {
        EXPECT_EQ(error.Place(), "byte 4") << "the byte order mark counts";
    }
}

TEST(TextCheck, ReportsEachCharacterThatCannotBeDrawn) {
    const auto names = [](const std::vector<TextShortcoming>& found) {
        std::string all;
        for (const TextShortcoming& each : found) all += each.what.substr(each.what.find("U+")) + " ";
        return all;
    };
    // Two characters with the same first unit, one of them repeated.
    const std::u16string text = u"A\U0001F600\u4E00\U0001F601\r\n\U0001F600\u00E9";
    EXPECT_EQ(names(CheckStrokeText(text)), "U+1F600 U+4E00 U+1F601 U+00E9 ");
    EXPECT_EQ(names(CheckFontText(text, {u"Liberation Sans"})),
              "U+FFFF cannot be drawn: U+1F600 U+4E00 U+FFFF cannot be drawn: U+1F601 ");
    EXPECT_EQ(CheckFontText(u"A", {u"No Such Font"}).front().what,
              "the font \"No Such Font\" is not installed");

    EXPECT_TRUE(NeedsShaping(u"a\u05D0"));
    EXPECT_FALSE(NeedsShaping(u"a\u0416\u4E00"));
}

}  // namespace
}  // namespace zr
