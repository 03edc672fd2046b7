// SPDX-License-Identifier: MIT
// Files cut short and files with flipped bytes, from heap buffers of exactly their size: each must load as a
// document that can be read to the last element, or end in an Error.
#include <gtest/gtest.h>

#include <memory>
#include <random>

#include "gltf/accessor.h"
#include "gltf/uri.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

// Whether it loads.
bool Try(std::string_view content) {
    const auto exact = std::make_unique<std::byte[]>(content.size());
    std::copy(content.begin(), content.end(), reinterpret_cast<char*>(exact.get()));
    try {
        const Document document = Document::FromBytes({exact.get(), content.size()}, "broken.glb");
        for (std::size_t i = 0; i < document.Elements(Kind::kAccessor).size(); ++i) {
            if (!HasData(document, i)) continue;
            const AccessorInfo info = Describe(document, i);
            EXPECT_EQ(ReadFloats(document, i).size(), info.count * info.shape.Components());
        }
        return true;
    } catch (const zr::Error&) {
        return false;
    }
}

std::string TextForm() {
    std::string json = test::SampleJson();
    const std::string_view buffer = R"({"byteLength": 256})";
    json.replace(json.find(buffer), buffer.size(),
                 R"({"byteLength": 256, "uri": ")" +
                     EncodeDataUri("application/octet-stream", test::SampleBin()) + "\"}");
    return json;
}

TEST(Broken, CutAtEveryLength) {
    for (const std::string& whole : {test::Glb(test::SampleJson(), test::SampleBin()), TextForm()}) {
        EXPECT_TRUE(Try(whole));
        for (std::size_t length = 0; length < whole.size(); ++length)
            ASSERT_FALSE(Try(std::string_view(whole).substr(0, length))) << length;
    }
}

TEST(Broken, FlippedBytes) {
    std::mt19937 random(7);
    for (const std::string& whole : {test::Glb(test::SampleJson(), test::SampleBin()), TextForm()}) {
        std::size_t loaded = 0;
        for (std::size_t at = 0; at < whole.size(); ++at) {
            std::string broken = whole;
            broken[at] = static_cast<char>(broken[at] ^ (1U << random() % 8));
            loaded += Try(broken);
            broken = whole;
            // Digits replace digits: the text stays JSON, but with wrong numbers.
            if (broken[at] >= '0' && broken[at] <= '9') broken[at] = static_cast<char>('0' + random() % 10);
            loaded += Try(broken);
        }
        EXPECT_GT(loaded, whole.size() / 10);
        EXPECT_LT(loaded, whole.size() * 2);
    }
}

}  // namespace
}  // namespace zr::gltf
