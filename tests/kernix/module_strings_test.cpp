// SPDX-License-Identifier: MIT
#include "kernix/module_strings.h"

#include <gtest/gtest.h>

#include "host/ref.h"
#include "host/stream.h"

namespace {

using kernix::LanguageTable;
using kernix::ParseStringTable;
using kernix::StringTable;
using kernix::StringTables;

std::string Bytes(std::u16string_view text) {
    std::string bytes;
    for (const char16_t c : text) {
        bytes.push_back(static_cast<char>(c & 0xFF));
        bytes.push_back(static_cast<char>(c >> 8));
    }
    return bytes;
}

TEST(StringTableText, KeepsBlanksAndQuotesAndSkipsTheRest) {
    const auto table =
        ParseStringTable(Bytes(u"\uFEFF1=\"one\"\r\n;\r\n\r\n2=\" a \"b\" \"\r\nx=\"no id\"\r\n3=no "
                               u"quotes\r\n4=\"\r\n1=\"again\"\r\n"
                               u"99999999999=\"too big\"\r\n5=\"\"\r\n6=\"last\""));
    ASSERT_TRUE(table.has_value());
    EXPECT_EQ(*table, (StringTable{{1, u"one"}, {2, u" a \"b\" "}, {5, u""}, {6, u"last"}}));
    EXPECT_FALSE(ParseStringTable(Bytes(u"1=\"no mark\"\r\n")).has_value());
    EXPECT_FALSE(ParseStringTable("").has_value());
    EXPECT_TRUE(ParseStringTable(std::string("\xFF\xFE\x31", 3))->empty());
}

TEST(StringTableText, LanguagesAndLocalesChooseTheirTable) {
    EXPECT_EQ(LanguageTable("de"), "DE_DE");
    EXPECT_EQ(LanguageTable("fr_CA.UTF-8"), "FR_FR");
    EXPECT_EQ(LanguageTable("zh-Hans"), "CN_CN");
    EXPECT_EQ(LanguageTable("en_US"), "ENG");
    EXPECT_EQ(LanguageTable("C.UTF-8"), std::nullopt);
    EXPECT_EQ(LanguageTable(""), std::nullopt);
    EXPECT_EQ(LanguageTable("deu"), std::nullopt);
}

std::u16string TextOf(std::string_view language, int id) {
    StringTables tables(language);
    const kernix::ModuleStrings* strings = tables.Load(nullptr);
    return strings ? strings->Get(id) : u"(no table)";
}

// This program carries the module's resources itself.
TEST(ModuleStrings, ComeInTheLanguageOrInEnglish) {
    EXPECT_EQ(TextOf("de_AT.UTF-8", 604), u"Schließen");
    EXPECT_EQ(TextOf("fr", 2001), u" : %d supprimé ;");
    EXPECT_EQ(TextOf("ja", 1), u"3D 階層の書き出し");
    EXPECT_EQ(TextOf("zh", 503), u"Metadata");
    EXPECT_EQ(TextOf("zh", 605), u"Help");
    EXPECT_EQ(TextOf("sv", 604), u"Close");
    EXPECT_EQ(TextOf("en", 12345), u"");
}

TEST(ModuleResources, AreReadByTypeAndName) {
    vl::String name;
    name.Set(u"zrdata|Cleaner_Query_Info", -1);
    const auto stream = vl::Ref<vl::Stream>::Adopt(vl::Stream::Create(nullptr, name, 2));
    ASSERT_TRUE(stream);
    char start[6] = {};
    EXPECT_EQ(stream->Read(start, 5), 5u);
    EXPECT_STREQ(start, "<?xml");
    EXPECT_EQ(stream->GetSize(), 1293u);
    EXPECT_FALSE(stream->Write("x", 1)) << "a resource is only read";
    EXPECT_EQ(vl::Stream::Create(nullptr, name, 1), nullptr) << "no such way to open";
    name.Set("ZRDATA|OTHER");
    EXPECT_EQ(vl::Stream::Create(nullptr, name, 2), nullptr);
    name.Set("ZRDATA");
    EXPECT_EQ(vl::Stream::Create(nullptr, name, 2), nullptr);
}

}  // namespace
