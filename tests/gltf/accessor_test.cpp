// SPDX-License-Identifier: MIT
#include "gltf/accessor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

using Values = std::vector<float>;

// A document with one accessor over the given bytes.
Document With(const std::string& accessor, const std::string& bytes, const std::string& view = "") {
    const std::string json = R"({"asset":{"version":"2.0"},"accessors":[)" + accessor +
                             R"(],"bufferViews":[{"buffer":0,"byteLength":)" + std::to_string(bytes.size()) +
                             view + R"(}],"buffers":[{"byteLength":)" + std::to_string(bytes.size()) + "}]}";
    return Document::FromBytes(BytesOf(test::Glb(json, bytes)), "a.glb");
}

std::string Accessor(const std::string& type, int component, int count, const std::string& more = "") {
    return R"({"bufferView":0,"type":")" + type + R"(","componentType":)" + std::to_string(component) +
           R"(,"count":)" + std::to_string(count) + more + "}";
}

TEST(Accessor, EveryComponentTypeReads) {
    const std::string bytes("\x80\xFF\x00\x7F", 4);
    EXPECT_EQ(ReadFloats(With(Accessor("SCALAR", 5120, 4), bytes), 0), (Values{-128, -1, 0, 127}));
    EXPECT_EQ(ReadFloats(With(Accessor("SCALAR", 5121, 4), bytes), 0), (Values{128, 255, 0, 127}));
    EXPECT_EQ(ReadFloats(With(Accessor("SCALAR", 5122, 2), bytes), 0), (Values{-128, 32512}));
    EXPECT_EQ(ReadFloats(With(Accessor("SCALAR", 5123, 2), bytes), 0), (Values{65408, 32512}));
    EXPECT_EQ(ReadIntegers(With(Accessor("SCALAR", 5125, 1), bytes), 0),
              (std::vector<std::uint32_t>{0x7F00FF80}));
    EXPECT_EQ(ReadFloats(With(Accessor("VEC2", 5126, 1), test::Floats({1.5F, -2})), 0), (Values{1.5F, -2}));
    const std::string normalized = R"(,"normalized":true)";
    EXPECT_EQ(ReadFloats(With(Accessor("VEC4", 5120, 1, normalized), bytes), 0),
              (Values{-1, -1.0F / 127, 0, 1}));
    EXPECT_EQ(ReadFloats(With(Accessor("VEC2", 5121, 2, normalized), bytes), 0),
              (Values{128.0F / 255, 1, 0, 127.0F / 255}));
    EXPECT_EQ(ReadFloats(With(Accessor("SCALAR", 5123, 1, normalized), std::string("\xFF\xFF", 2)), 0),
              (Values{1}));
}

TEST(Accessor, StridesOffsetsAndPaddedColumns) {
    const std::string bytes = test::Floats({9, 1, 2, 9, 3, 4, 9, 5});
    EXPECT_EQ(
        ReadFloats(With(Accessor("SCALAR", 5126, 3, R"(,"byteOffset":4)"), bytes, R"(,"byteStride":12)"), 0),
        (Values{1, 3, 5}));
    EXPECT_EQ(
        ReadFloats(With(Accessor("VEC2", 5126, 2, R"(,"byteOffset":4)"), bytes, R"(,"byteStride":12)"), 0),
        (Values{1, 2, 3, 4}));
    EXPECT_EQ(ReadFloats(With(Accessor("MAT2", 5121, 1), std::string("\1\2xx\3\4xx", 8)), 0),
              (Values{1, 2, 3, 4}));
    EXPECT_EQ(ReadFloats(With(Accessor("MAT3", 5121, 1), std::string("\1\2\3x\4\5\6x\7\10\11x", 12)), 0),
              (Values{1, 2, 3, 4, 5, 6, 7, 8, 9}));
}

TEST(Accessor, TheLastColumnNeedsNoPadding) {
    EXPECT_EQ(ReadFloats(With(Accessor("MAT2", 5121, 1), std::string("\1\2xx\3\4", 6)), 0),
              (Values{1, 2, 3, 4}));
    EXPECT_THROW(With(Accessor("MAT2", 5121, 1), std::string("\1\2xx\3", 5)), Error);
    EXPECT_THROW(With(Accessor("MAT2", 5121, 2), std::string(13, 'x')), Error);
}

TEST(Accessor, NumbersThatAreNotFiniteAreReportedAndNotWritten) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const std::string bytes = test::Floats({0, 1, 2, 3, 4, kInfinity});
    EXPECT_EQ(With(Accessor("VEC3", 5126, 2), bytes).Warnings().size(), 1U);
    EXPECT_EQ(With(Accessor("VEC2", 5126, 3), bytes).Warnings().size(), 1U);
    EXPECT_TRUE(With(Accessor("VEC2", 5126, 2), bytes).Warnings().empty());
    EXPECT_TRUE(With(Accessor("VEC2", 5126, 2), bytes, R"(,"byteStride":12)").Warnings().empty());
    EXPECT_TRUE(With(Accessor("VEC4", 5121, 6), bytes).Warnings().empty());

    Document document = test::Sample();
    const std::size_t before = document.Elements(Kind::kAccessor).size();
    for (float bad : {kInfinity, -kInfinity, std::numeric_limits<float>::quiet_NaN()})
        EXPECT_THROW(AppendFloats(document, "SCALAR", Use::kKeyValues, Values{0, bad}), Error);
    EXPECT_EQ(document.Elements(Kind::kAccessor).size(), before);
    EXPECT_THROW(document.Tree().MakeNumber(kInfinity), Error);
    EXPECT_THROW(document.Tree().MakeNumber(std::nan("")), Error);
}

TEST(Accessor, SparseValuesStandOverTheBase) {
    const auto sparse = [](const std::string& base, int indices) {
        return "{" + base +
               R"("type":"VEC2","componentType":5126,"count":3,"sparse":{"count":2,"indices":{"bufferView":0,
            "byteOffset":)" +
               std::to_string(indices) +
               R"(,"componentType":5121},"values":{"bufferView":0,"byteOffset":4}}})";
    };
    const std::string bytes = std::string("\0\2\1\1", 4) + test::Floats({7, 8, 9, 10, 0, 0});
    EXPECT_EQ(ReadFloats(With(sparse("", 0), bytes), 0), (Values{7, 8, 0, 0, 9, 10}));
    EXPECT_EQ(ReadFloats(With(sparse(R"("bufferView":0,"byteOffset":4,)", 0), bytes), 0),
              (Values{7, 8, 9, 10, 9, 10}));
    EXPECT_THROW(With(sparse("", 2), bytes), Error);  // 1, 1 does not increase
}

TEST(Accessor, AppendedDataReadsBackThroughAFile) {
    const test::TemporaryFolder folder;
    const Values times{0, 0.25F, 3}, values{1, 2, 3, -4, 5, 6, 7, 8, -9};
    std::vector<std::uint32_t> narrow{0, 2, 65534}, wide{0, 65535};
    for (const char* name : {"out.glb", "out.gltf"}) {
        Document document = test::Sample();
        const std::size_t first = AppendFloats(document, "SCALAR", Use::kKeyTimes, times);
        AppendFloats(document, "VEC3", Use::kPosition, values);
        AppendFloats(document, "VEC3", Use::kKeyValues, values);
        AppendIndices(document, narrow);
        AppendIndices(document, wide);
        document.Save(folder / name);

        const Document read = Document::Load(folder / name);
        EXPECT_EQ(ReadFloats(read, first), times);
        EXPECT_EQ(ReadFloats(read, first + 1), values);
        EXPECT_EQ(ReadIntegers(read, first + 3), narrow);
        EXPECT_EQ(ReadIntegers(read, first + 4), wide);
        EXPECT_EQ(Describe(read, first + 3).component, Component::kUnsignedShort);
        EXPECT_EQ(Describe(read, first + 4).component, Component::kUnsignedInt);
        const auto accessors = read.Elements(Kind::kAccessor);
        EXPECT_EQ(WriteJson(*accessors[first].Find("max"), false), "[3]");
        EXPECT_EQ(WriteJson(*accessors[first + 1].Find("min"), false), "[-4,2,-9]");
        EXPECT_EQ(accessors[first + 2].Find("min"), nullptr);
        EXPECT_EQ(ReadFloats(read, 4), (Values{0, 0, 0, 2, 0, 0}));
    }
}

TEST(Accessor, CompressedDataIsCarriedButNotRead) {
    Document document = test::FromText(R"({"asset":{"version":"2.0"},
        "accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"SCALAR"},
                     {"componentType":5126,"count":2,"type":"SCALAR"}],
        "bufferViews":[{"buffer":1,"byteLength":12,"extensions":{"EXT_meshopt_compression":{"buffer":0,"byteLength":3}}}],
        "buffers":[{"byteLength":3,"uri":"data:;base64,AAAA"},{"byteLength":12}]})");
    EXPECT_FALSE(HasData(document, 0));
    EXPECT_THROW(ReadFloats(document, 0), Error);
    EXPECT_TRUE(HasData(document, 1));
    EXPECT_EQ(ReadFloats(document, 1), (Values{0, 0}));
}

// Integers, gaps and sparse values cannot be used in place.
TEST(Accessor, StoredFloatsEqualTheFloatsRead) {
    const Document document = test::Sample();
    std::size_t stored = 0, other = 0;
    for (std::size_t i = 0; i < document.Elements(Kind::kAccessor).size(); ++i) {
        const auto floats = StoredFloats(document, i);
        ++(floats.empty() ? other : stored);
        if (floats.empty()) continue;
        EXPECT_EQ(std::vector<float>(floats.begin(), floats.end()), ReadFloats(document, i)) << i;
    }
    EXPECT_GT(stored, 0U);
    EXPECT_GT(other, 0U);
}

}  // namespace
}  // namespace zr::gltf
