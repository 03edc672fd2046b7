// SPDX-License-Identifier: MIT
#include "gltf/json.h"

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <limits>
#include <random>

#include "gltf/error.h"

namespace zr::gltf {
namespace {

std::string Fault(std::string text) {
    JsonTree tree;
    const std::size_t size = text.size();
    text += '#';
    try {
        tree.Parse(text.data(), size, "f");
    } catch (const Error& error) {
        return error.what();
    }
    return "none";
}

TEST(Json, UnchangedContentIsWrittenAsItWasRead) {
    JsonTree tree;
    for (const char* text : {
             "0",
             "-0.0",
             "1.0",
             "1e300",
             "1E+5",
             "0.1000",
             "18446744073709551616",
             "-9223372036854775809",
             "123456789012345678901234567890.5",
             "-0",
             "-0.00",
             "0.050",
             "-12.75",
             "9007199254740991",
             "9007199254740992",
             "-900719925474.0991",
             "0.0000000000000000000001",
             "0.00000000000000000000001",
             "\"\"",
             "\"a\\\"b\\\\c\\n\\t\\u0001\"",
             "\"\xC3\xA9\xE2\x82\xAC\"",
             "[]",
             "{}",
             "[null,true,false]",
             "{\"b\":1,\"a\":{\"b\":[[],{}]}}",
             "{\"\":0}",
         })
        EXPECT_EQ(WriteJson(tree.Build(text), false), text);
    EXPECT_EQ(WriteJson(tree.Build(R"("\u00e9\/\uD83D\uDE00")"), false), "\"\xC3\xA9/\xF0\x9F\x98\x80\"");
    EXPECT_EQ(WriteJson(tree.Build(R"({"a":[1,2],"b":[{"c":[]}]})"), true),
              "{\n  \"a\": [1, 2],\n  \"b\": [\n    {\n      \"c\": []\n    }\n  ]\n}");
}

TEST(Json, NumbersReadAndWriteExactly) {
    JsonTree tree;
    const auto index = [&](const char* text) { return tree.Build(text).Index().value_or(777); };
    EXPECT_EQ(index("0"), 0U);
    EXPECT_EQ(index("3.0"), 3U);
    EXPECT_EQ(index("1e2"), 100U);
    EXPECT_EQ(index("18446744073709551615"), std::numeric_limits<std::size_t>::max());
    for (const char* text : {"-1", "0.5", "1e30", "\"3\"", "null"}) EXPECT_EQ(index(text), 777U) << text;
    for (double value : {0.1, -0.0, 1e300, 5e-324, 123456789.125})
        EXPECT_EQ(std::bit_cast<std::uint64_t>(tree.MakeNumber(value).Number()),
                  std::bit_cast<std::uint64_t>(value));
    Json::NumberRoom room;
    EXPECT_EQ(tree.MakeNumber(0.1F).NumberText(room), "0.1");
    EXPECT_EQ(static_cast<float>(tree.MakeNumber(16777216.0F).Number()), 16777216.0F);
    EXPECT_EQ(tree.Build("1e-999").Number(), 0.0);
}

TEST(Json, DecimalsReadAsTheNearestDouble) {
    std::mt19937_64 random(7);
    JsonTree tree;
    for (int i = 0; i < 20000; ++i) {
        std::string text = std::to_string(random() >> random() % 64);
        const std::size_t places = random() % 25;
        if (text.size() <= places) text.insert(0, places + 1 - text.size(), '0');
        if (places != 0) text.insert(text.size() - places, ".");
        if (random() % 2 == 0) text.insert(0, "-");
        double wanted = 0;
        std::from_chars(text.data(), text.data() + text.size(), wanted);
        const Json number = tree.Build(text);
        ASSERT_EQ(std::bit_cast<std::uint64_t>(number.Number()), std::bit_cast<std::uint64_t>(wanted))
            << text;
        ASSERT_EQ(WriteJson(number, false), text);
    }
}

// A value's word counts up to 8190 characters; longer texts are stored in another way.
TEST(Json, TextsOfAnyLengthAreKept) {
    Json::NumberRoom room;
    for (const std::size_t size : {8190U, 8191U, 8192U, 100000U}) {
        const std::string text(size, 'x'), digits = "0." + std::string(size - 2, '7');
        JsonTree tree, other;
        Json object = tree.Build("{\"" + text + "\":[\"" + text + "\"," + digits + "]}");
        ASSERT_NE(object.Find(text), nullptr);
        EXPECT_EQ(object.Find(text)->Items()[0].String(), text);
        EXPECT_EQ(object.Find(text)->Items()[1].NumberText(room), digits);
        tree.Member(object, "new") = tree.MakeString(text);
        EXPECT_EQ(other.Clone(object).Find("new")->String(), text);
    }
}

// These agree in length, first and last character.
TEST(Json, NamesThatLookAlikeStayApart) {
    JsonTree tree;
    const Json list = tree.Build(R"([{"abc":1,"adc":2},{"adc":3,"abc":4},{"aec":5}])");
    const auto at = [&](std::size_t item, std::string_view name) {
        const Json* const found = list.Items()[item].Find(name);
        return found != nullptr ? *found->Index() : 0;
    };
    EXPECT_EQ(at(0, "abc"), 1U);
    EXPECT_EQ(at(0, "adc"), 2U);
    EXPECT_EQ(at(1, "adc"), 3U);
    EXPECT_EQ(at(1, "abc"), 4U);
    EXPECT_EQ(at(2, "aec"), 5U);
    EXPECT_EQ(at(2, "abc"), 0U);
}

TEST(Json, NamesThatDifferInOneCharacterStayApart) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrst";
    for (std::size_t size = 1; size <= kLetters.size(); ++size) {
        const std::string name(kLetters.substr(0, size));
        JsonTree tree;
        Json object = JsonTree::MakeObject();
        for (std::size_t at = 0; at < size; ++at) {
            std::string other = name;
            other[at] = '_';
            tree.Member(object, other) = tree.MakeIndex(at);
        }
        EXPECT_EQ(object.Members().size(), size);
        EXPECT_EQ(object.Find(name), nullptr) << size;
        for (std::size_t at = 0; at < size; ++at)
            EXPECT_EQ(*object.Find(object.Members()[at].Name())->Index(), at) << size;
    }
}

TEST(Json, EditsGrowAndFilterInOrder) {
    JsonTree tree;
    Json array = JsonTree::MakeArray(), object = tree.Build(R"({"a":1,"b":2})");
    for (unsigned i = 0; i < 100; ++i) tree.Append(array, tree.MakeIndex(i));
    array.FilterItems([](const Json& item) { return *item.Index() % 33 == 0; });
    tree.Append(array, tree.MakeString("end"));
    EXPECT_EQ(WriteJson(array, false), "[0,33,66,99,\"end\"]");
    tree.Member(object, "c") = array;
    tree.Member(object, "a") = JsonTree::MakeBool(true);
    EXPECT_TRUE(object.EraseMember("b"));
    EXPECT_FALSE(object.EraseMember("b"));
    EXPECT_EQ(WriteJson(object, false), "{\"a\":true,\"c\":[0,33,66,99,\"end\"]}");
    JsonTree other;
    const Json copy = other.Clone(object);
    object.Find("c")->FilterItems([](const Json&) { return false; });
    EXPECT_EQ(WriteJson(copy, false), "{\"a\":true,\"c\":[0,33,66,99,\"end\"]}");
}

TEST(Json, EqualityComparesContent) {
    JsonTree tree;
    const Json a = tree.Build(R"({"x":[1,{"y":"z"}],"n":2})");
    EXPECT_TRUE(EqualJson(a, tree.Build(R"({"n":2.0,"x":[1e0,{"y":"z"}]})")));
    for (const char* text :
         {R"({"x":[1,{"y":"z"}],"m":2})", R"({"x":[1,{"y":"z"}]})", R"({"x":[{"y":"z"},1],"n":2})",
          R"({"x":[1,{"y":"z"},3],"n":2})", R"({"x":[1,{"y":"z"}],"n":"2"})"})
        EXPECT_FALSE(EqualJson(a, tree.Build(text))) << text;
}

TEST(Json, BrokenTextIsRefusedWithItsPlace) {
    EXPECT_EQ(Fault("\xEF\xBB\xBF{} \n"), "none");
    EXPECT_EQ(Fault("{}\0  "), "none");
    EXPECT_EQ(Fault("[1,]").substr(0, 9), "f: byte 3");
    EXPECT_EQ(Fault("\xEF\xBB\xBF[1,]").substr(0, 9), "f: byte 6");
    EXPECT_NE(Fault(R"({"a":1,"b":2,"a":3})").find("two members of the same name"), std::string::npos);
    for (std::string text :
         {std::string(""), std::string("{"), std::string("{} x"), std::string("[01]"), std::string("[1e999]"),
          std::string("[NaN]"), std::string("\"\xFF\""), std::string("\"\xC0\x80\""),
          std::string("[1]\0[2]", 7), std::string("\"a\nb\""), std::string("\"\\uD800\"")})
        EXPECT_NE(Fault(text), "none") << text;
    EXPECT_EQ(Fault("\"a\xF4"), "f: byte 3: the text ends inside a character");
    std::string many = "{";
    for (int i = 0; i < 40; ++i) many += "\"" + std::to_string(i) + "\":0,";
    EXPECT_EQ(Fault(many + "\"x\":0}"), "none");
    EXPECT_NE(Fault(many + "\"17\":0}"), "none");
}

TEST(Json, NestingIsBounded) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    EXPECT_EQ(Fault(nested(kMaxJsonDepth)), "none");
    EXPECT_NE(Fault(nested(kMaxJsonDepth + 1)), "none");
    EXPECT_NE(Fault(std::string(1000000, '[')), "none");
}

}  // namespace
}  // namespace zr::gltf
