// SPDX-License-Identifier: MIT
#include "gltf/document.h"

#include <gtest/gtest.h>

#include "base/text.h"
#include "gltf/uri.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

using Names = std::vector<std::string>;
using test::TemporaryFolder;
using test::TextOf;

TEST(Document, WithoutEditsIsWrittenAsItWasRead) {
    const TemporaryFolder folder;
    const std::string container = test::Glb(test::SampleJson(), test::SampleBin());
    folder.Write("in.glb", container);
    Document::Load(folder / "in.glb").Save(folder / "out.glb");
    const Document before = Document::Load(folder / "in.glb"), after = Document::Load(folder / "out.glb");
    EXPECT_EQ(WriteJson(before.Root(), false), WriteJson(after.Root(), false));
    EXPECT_EQ(TextOf(*after.BufferBytes(0)), test::SampleBin());

    folder.Write("a/in.gltf", test::TextScene("data%20one.bin"));
    folder.Write("a/data one.bin", test::SampleBin());
    folder.Write("a/my images/a.png", "\x89PNG image");
    Document::Load(folder / "a/in.gltf").Save(folder / "a/copy.gltf");
    Document::Load(folder / "a/in.gltf").Save(folder / "b/c/in.gltf");
    for (const char* name : {"a/copy.gltf", "b/c/in.gltf"})
        EXPECT_TRUE(
            EqualJson(Document::Load(folder / "a/in.gltf").Root(), Document::Load(folder / name).Root()))
            << name;
    EXPECT_EQ(folder.Files(),
              (Names{"a/copy.gltf", "a/data one.bin", "a/in.gltf", "a/my images/a.png", "b/c/data one.bin",
                     "b/c/in.gltf", "b/c/my images/a.png", "in.glb", "out.glb"}));
    EXPECT_EQ(folder.Read("b/c/my images/a.png"), "\x89PNG image");
}

TEST(Document, UnknownChunksAndOddEndsSurvive) {
    const TemporaryFolder folder;
    std::string container = test::Glb(R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":3}]})", "abc");
    container += std::string("\4\0\0\0ODD!data", 12);
    container[8] = static_cast<char>(container.size());
    folder.Write("in.glb", container);
    Document::Load(folder / "in.glb").Save(folder / "out.glb");
    EXPECT_EQ(folder.Read("out.glb"), container);
}

TEST(Document, TextBecomesOneContainerAndBack) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene("d.bin"));
    folder.Write("d.bin", test::SampleBin());
    folder.Write("my images/a.png", "\x89PNG image");
    Document::Load(folder / "in.gltf").Save(folder / "x/out.glb");
    EXPECT_EQ(folder.Files().size(), 4U);
    Document read = Document::Load(folder / "x/out.glb");
    ASSERT_EQ(read.Elements(Kind::kBuffer).size(), 1U);
    EXPECT_EQ(TextOf(*read.BufferBytes(0)).substr(0, 256), test::SampleBin());
    const Json& image = read.Elements(Kind::kImage)[0];
    EXPECT_EQ(image.Find("mimeType")->String(), "image/png");
    EXPECT_EQ(TextOf(*read.ViewBytes(IndexMember(image, "bufferView"))), "\x89PNG image");
    EXPECT_EQ(read.Elements(Kind::kImage)[1].Find("uri")->String(), "gone.png");

    read.Save(folder / "y/back.gltf");
    EXPECT_EQ(folder.Read("y/back.bin").substr(0, 256), test::SampleBin());
    EXPECT_EQ(Document::Load(folder / "y/back.gltf").Elements(Kind::kNode).size(), 7U);
}

TEST(Document, SeveralBuffersMergeWithTheirViews) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", R"({"asset":{"version":"2.0"},"buffers":[
        {"byteLength":12},{"byteLength":5,"uri":"a.bin"},{"byteLength":3,"uri":"data:;base64,eHl6"}],
        "bufferViews":[{"buffer":2,"byteOffset":1,"byteLength":2},{"buffer":1,"byteLength":5},
        {"buffer":0,"byteLength":12,"extensions":{"EXT_meshopt_compression":{"buffer":2,"byteLength":3}}}]})");
    folder.Write("a.bin", "abcde");
    Document::Load(folder / "in.gltf").Save(folder / "out.glb");
    Document read = Document::Load(folder / "out.glb");
    EXPECT_EQ(read.Elements(Kind::kBuffer).size(), 2U);
    EXPECT_EQ(TextOf(*read.BufferBytes(0)), std::string("abcde\0\0\0xyz", 11));
    EXPECT_FALSE(read.BufferBytes(1));
    EXPECT_EQ(TextOf(*read.ViewBytes(0)), "yz");
    EXPECT_EQ(TextOf(*read.ViewBytes(1)), "abcde");
    EXPECT_FALSE(read.ViewBytes(2));
    const Json& compressed =
        *read.Elements(Kind::kBufferView)[2].Find("extensions")->Find("EXT_meshopt_compression");
    EXPECT_EQ(IndexMember(compressed, "buffer", 9), 0U);
    EXPECT_EQ(IndexMember(compressed, "byteOffset", 9), 8U);

    // An extension that may refer to buffers by index keeps them separate.
    std::string json = folder.Read("in.gltf");
    json.replace(json.find("\"buffers\""), 0, R"("extensions":{"ODD_uses":{"buffer":2}},)");
    folder.Write("odd.gltf", json);
    Document::Load(folder / "odd.gltf").Save(folder / "odd/out.glb");
    Document odd = Document::Load(folder / "odd/out.glb");
    EXPECT_EQ(odd.Elements(Kind::kBuffer).size(), 3U);
    EXPECT_EQ(TextOf(*odd.ViewBytes(1)), "abcde");
}

TEST(Document, ABufferThatIsNotStoredDoesNotBecomeTheChunk) {
    const TemporaryFolder folder;
    test::FromText(R"({"asset":{"version":"2.0"},"buffers":[{"byteLength":90000}],
        "bufferViews":[{"buffer":0,"byteLength":8}]})")
        .Save(folder / "out.glb");
    const Document read = Document::Load(folder / "out.glb");
    ASSERT_EQ(read.Elements(Kind::kBuffer).size(), 2U);
    EXPECT_TRUE(read.BufferBytes(0));
    EXPECT_FALSE(read.BufferBytes(1));
    EXPECT_EQ(IndexMember(read.Elements(Kind::kBufferView)[0], "buffer", 9), 1U);
    EXPECT_EQ(folder.Read("out.glb").size() % 4, 0U);
}

TEST(Document, BytesAfterAContainerAreNotPartOfIt) {
    const TemporaryFolder folder;
    const std::string container = test::Glb(R"({"asset":{"version":"2.0"}})", "");
    folder.Write("in.glb", container + "x");
    Document document = Document::Load(folder / "in.glb");
    EXPECT_EQ(document.Warnings().size(), 1U);
    document.Save(folder / "out.glb");
    EXPECT_EQ(folder.Read("out.glb"), container);
}

TEST(Document, SizesCountAllFiles) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene("d.bin"));
    folder.Write("d.bin", test::SampleBin());
    folder.Write("my images/a.png", "\x89PNG image");
    const auto sizes = [&](const char* target) {
        Document document = Document::Load(folder / "in.gltf");
        const std::uint64_t before = document.SourceSize();
        EXPECT_EQ(before, folder.Read("in.gltf").size() + 256 + 10);
        return document.Save(folder / target);
    };
    const std::uint64_t same = sizes("same.gltf");
    EXPECT_EQ(same, folder.Read("same.gltf").size() + 256 + 10);
    const std::uint64_t o = sizes("other/o.gltf");
    EXPECT_EQ(o, folder.Read("other/o.gltf").size() + 256 + 10);
    const std::uint64_t one = sizes("one.glb");
    EXPECT_EQ(one, folder.Read("one.glb").size());
}

TEST(Document, MemoryHasABudget) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene("d.bin"));
    folder.Write("d.bin", test::SampleBin());
    const auto fault = [&](std::uint64_t bytes) {
        try {
            Document document = Document::Load(folder / "in.gltf", {.maxMemory = bytes});
            document.Claim(document.Budget().Left(), "/a");
            document.Claim(1, "/b");
        } catch (const zr::Error& error) {
            return error.Place();
        }
        return std::string("none");
    };
    EXPECT_EQ(fault(0), "/b");
    EXPECT_EQ(fault(1000000), "/b");
    EXPECT_EQ(fault(1000), "");
    std::uint64_t tree = 256 << 10;
    const Document sample = Document::Load(folder / "in.gltf");
    for (std::size_t kind = 0; kind < kKinds; ++kind)
        tree += 1024 * sample.Elements(static_cast<Kind>(kind)).size();
    EXPECT_EQ(fault(folder.Read("in.gltf").size() + tree + 100), "/buffers/0/uri");
    // Few bytes that many accessors share.
    std::string accessors, separator;
    for (int i = 0; i < 100; ++i, separator = ",")
        accessors += separator + R"({"bufferView":0,"componentType":5126,"count":3000,"type":"SCALAR"})";
    const std::string glb = test::Glb(R"({"asset":{"version":"2.0"},"accessors":[)" + accessors +
                                          R"(],"bufferViews":[{"buffer":0,"byteLength":12000}],
                                          "buffers":[{"byteLength":12000}]})",
                                      std::string(12000, '\0'));
    const auto load = [&](std::uint64_t bytes) {
        Document::FromBytes(BytesOf(glb), "a.glb", {.maxMemory = bytes});
    };
    EXPECT_NO_THROW(load(1300000));
    EXPECT_THROW(load(1100000), Error);
    // An endless device.
    EXPECT_THROW(Document::Load("/dev/zero", {.maxMemory = 1 << 20}), zr::Error);
}

// A few bytes that many elements share would be many in memory.
TEST(Document, SharedDataIsBounded) {
    const TemporaryFolder folder;
    folder.Write("a.bin", std::string(1 << 20, '\0'));
    const auto times = [](int count, const std::string& element) {
        std::string list;
        for (int i = 0; i < count; ++i) list += (i == 0 ? "" : ",") + element;
        return "[" + list + "]";
    };
    const auto fault = [&](const std::string& lists, std::uint64_t bytes) {
        folder.Write("in.gltf", R"({"asset":{"version":"2.0"},)" + lists + "}");
        try {
            Document::Load(folder / "in.gltf", {.maxMemory = bytes});
        } catch (const Error& error) {
            return error.Place().substr(0, error.Place().find('/', 1));
        }
        return std::string();
    };
    const auto buffers = [&](int count) {
        return "\"buffers\":" + times(count, R"({"byteLength":1048576,"uri":"a.bin"})");
    };
    EXPECT_EQ(fault(buffers(200), 0), "");
    EXPECT_EQ(fault(buffers(300), 0), "/buffers") << "a file does not raise the budget twice";
    const auto images = [&](int count) { return "\"images\":" + times(count, R"({"uri":"a.bin"})"); };
    EXPECT_EQ(fault(images(9), 10 << 20), "");
    EXPECT_EQ(fault(images(20), 10 << 20), "/images");
    // Views that overlap share bytes, too.
    const auto views = [&](int count) {
        std::string list = "[", overlapping = list;
        for (int i = 0; i < count; ++i) {
            list += Join(i == 0 ? "" : ",", "{\"bufferView\":", i, ",\"mimeType\":\"image/png\"}");
            overlapping +=
                Join(i == 0 ? "" : ",", "{\"buffer\":0,\"byteOffset\":", i, ",\"byteLength\":1000000}");
        }
        return buffers(1) + ",\"images\":" + list + "],\"bufferViews\":" + overlapping + "]";
    };
    EXPECT_EQ(fault(views(9), 10 << 20), "");
    EXPECT_EQ(fault(views(20), 10 << 20), "/images");
    // Elements that hold nothing.
    const auto empty = [&](int count) { return "\"nodes\":" + times(count, "{}"); };
    EXPECT_EQ(fault(empty(9'000), 10 << 20), "");
    EXPECT_EQ(fault(empty(11'000), 10 << 20), "/nodes");
    std::string keys;
    for (int i = 0; i < 1000; ++i) keys += test::Floats({static_cast<float>(i)});
    folder.Write("keys.bin", keys + std::string(12000, '\0'));
    const auto animations = [&](int count) {
        return R"("nodes":[{}],"accessors":[
          {"bufferView":0,"componentType":5126,"count":1000,"type":"SCALAR","min":[0],"max":[999]},
          {"bufferView":0,"byteOffset":4000,"componentType":5126,"count":1000,"type":"VEC3"}],
          "bufferViews":[{"buffer":0,"byteLength":16000}],
          "buffers":[{"byteLength":16000,"uri":"keys.bin"}],
          "animations":)" +
               times(count, R"({"samplers":[{"input":0,"output":1}],
                 "channels":[{"sampler":0,"target":{"node":0,"path":"translation"}}]})");
    };
    EXPECT_EQ(fault(animations(100), 10 << 20), "");
    EXPECT_EQ(fault(animations(300), 10 << 20), "/animations");
}

TEST(Document, CollectionsAreFoundAmongManyMembers) {
    std::string json = R"({"asset":{"version":"2.0"})";
    for (int i = 0; i < 40; ++i) json += ",\"odd " + std::to_string(i) + "\":0";
    Document document = test::FromText(json + R"(,"nodes":[{}]})");
    const auto count = [&](Kind kind) {
        const std::size_t found = document.Elements(kind).size();
        EXPECT_EQ(std::as_const(document).Elements(kind).size(), found);
        return found;
    };
    EXPECT_EQ(count(Kind::kNode), 1U);
    EXPECT_EQ(count(Kind::kMaterial), 0U);
    EXPECT_EQ(count(Kind::kLight), 0U);
    document.Append(Kind::kLight, JsonTree::MakeObject());
    document.Append(Kind::kMaterial, JsonTree::MakeObject());
    document.Root().EraseMember("odd 3");
    EXPECT_EQ(count(Kind::kNode), 1U);
    EXPECT_EQ(count(Kind::kMaterial), 1U);
    EXPECT_EQ(count(Kind::kLight), 1U);
    document.Root().EraseMember("nodes");
    EXPECT_EQ(count(Kind::kNode), 0U);
    EXPECT_EQ(count(Kind::kMaterial), 1U);
}

TEST(Document, NewDataGoesWhereTheDocumentKeepsIts) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene(EncodeDataUri("application/octet-stream", test::SampleBin())));
    Document document = Document::Load(folder / "in.gltf");
    const std::size_t view = document.AppendView(BytesOf("more"), 0, 0);
    document.Save(folder / "out.gltf");
    EXPECT_EQ(folder.Files(), (Names{"in.gltf", "out.gltf"}));
    EXPECT_EQ(TextOf(*Document::Load(folder / "out.gltf").ViewBytes(view)), "more");

    Document container = test::Sample();
    container.AppendView(BytesOf("more"), 0, 0);
    container.Save(folder / "out.glb");
    const Document read = Document::Load(folder / "out.glb");
    EXPECT_EQ(TextOf(*read.BufferBytes(0)), test::SampleBin() + "more");
}

}  // namespace
}  // namespace zr::gltf
