// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <span>
#include <vector>

#include "platform/windows.h"

// The resources as in the module; this program embeds them too.
namespace {

std::span<const std::byte> Resource(LPCSTR name, LPCSTR type) {
    const HRSRC resource = FindResourceA(nullptr, name, type);
    return {static_cast<const std::byte*>(LockResource(LoadResource(nullptr, resource))),
            SizeofResource(nullptr, resource)};
}

// Reads a language table strictly; any deviation from the format is a failure.
std::map<int, std::u16string> ReadTable(LPCSTR name) {
    std::map<int, std::u16string> texts;
    const auto bytes = Resource(name, "LNG");
    EXPECT_EQ(bytes.size() % 2, 0u);
    std::u16string content(bytes.size() / 2, 0);
    std::memcpy(content.data(), bytes.data(), content.size() * 2);
    EXPECT_EQ(content.front(), 0xFEFF);
    EXPECT_EQ(content.substr(content.size() - 2), u"\r\n");
    EXPECT_EQ(content.find(u'\0'), std::u16string::npos);
    int lastId = 0;
    for (std::size_t begin = 1; begin < content.size();) {
        const std::size_t end = content.find(u"\r\n", begin);
        if (end == std::u16string::npos) break;
        const std::u16string line = content.substr(begin, end - begin);
        begin = end + 2;
        if (line.empty() || line == u";") continue;
        const std::size_t digits = line.find_first_not_of(u"0123456789");
        const std::string number(line.begin(), line.begin() + static_cast<std::ptrdiff_t>(digits));
        EXPECT_EQ(line.substr(digits, 2), u"=\"") << name << " " << number;
        EXPECT_EQ(line.find(u'"', digits + 2), line.size() - 1) << name << " " << number;
        const int id = std::stoi(number);
        EXPECT_GT(id, lastId);
        lastId = id;
        texts[id] = line.substr(digits + 2, line.size() - digits - 3);
    }
    return texts;
}

std::vector<int> IdsOf(const std::map<int, std::u16string>& table) {
    std::vector<int> ids;
    for (const auto& [id, text] : table) ids.push_back(id);
    return ids;
}

const std::vector<int> kIds = {1,    100,  500,  501,  502,  503,  504,  505,  506,  507,  508,  510,
                               511,  512,  601,  602,  603,  604,  605,  1000, 1001, 1002, 1050, 1100,
                               1101, 1111, 1121, 1131, 1141, 1151, 1161, 1171, 1181, 1191, 2001};

TEST(LanguageTables, HaveTheSameIdsApartFromChinese) {
    for (const char* name : {"ENG", "DE_DE", "FR_FR", "JA_JP"}) {
        EXPECT_EQ(IdsOf(ReadTable(name)), kIds) << name;
    }
    std::vector<int> chinese = kIds;
    std::erase_if(chinese,
                  [](int id) { return id == 508 || id == 512 || id == 605 || id == 1181 || id == 1191; });
    EXPECT_EQ(IdsOf(ReadTable("CN_CN")), chinese);
}

TEST(LanguageTables, KeepBlanksAndCharactersOutsideLatin) {
    auto french = ReadTable("FR_FR");
    EXPECT_EQ(french[2001], u" : %d supprimé ;");
    EXPECT_EQ(french[507], u"Toute note, légende en cours et annotation ");
    EXPECT_EQ(french[512], u"Cartes d\u2019environnement et panneaux arrière");
    EXPECT_EQ(ReadTable("DE_DE")[604], u"Schließen");
    EXPECT_EQ(ReadTable("CN_CN")[1], u"3D结构导出");
    EXPECT_EQ(ReadTable("CN_CN")[1151], u"remove notes, callouts and annotatins");
}

TEST(LanguageTables, JapaneseIsEnglishButForTheDescription) {
    auto japanese = ReadTable("JA_JP");
    EXPECT_EQ(japanese[1], u"3D 階層の書き出し");
    japanese[1] = ReadTable("ENG")[1];
    EXPECT_EQ(japanese, ReadTable("ENG"));
}

TEST(LanguageTables, OnlyTheCountHasAConversion) {
    for (const char* name : {"ENG", "CN_CN", "DE_DE", "FR_FR", "JA_JP"}) {
        for (const auto& [id, text] : ReadTable(name)) {
            EXPECT_EQ(text.find(u'%') != std::u16string::npos, id == 2001) << name << " " << id;
        }
    }
}

TEST(MethodDescription, IsAsciiWithWindowsLineEnds) {
    const auto bytes = Resource("CLEANER_QUERY_INFO", "ZRDATA");
    ASSERT_FALSE(bytes.empty());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto c = static_cast<unsigned char>(bytes[i]);
        ASSERT_TRUE(c == '\r' || c == '\n' || (c >= 0x20 && c < 0x7F)) << i;
        if (c == '\n') {
            ASSERT_EQ(static_cast<char>(bytes[i - 1]), '\r') << i;
        }
    }
}

TEST(VersionRecord, StatesTheVersion) {
    const auto bytes = Resource(MAKEINTRESOURCEA(1), MAKEINTRESOURCEA(16));
    std::uint32_t fixed[4];
    ASSERT_GE(bytes.size(), 40 + sizeof(fixed));
    std::memcpy(fixed, bytes.data() + 40, sizeof(fixed));
    EXPECT_EQ(fixed[0], 0xFEEF04BDu);
    EXPECT_EQ(fixed[2], (6u << 16) | 3u);
    EXPECT_EQ(fixed[3], (1u << 16) | 8069u);
}

}  // namespace
