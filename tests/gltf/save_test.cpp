// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "gltf/document.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

using Names = std::vector<std::string>;
using test::TemporaryFolder;
using test::TextOf;

TEST(Save, FilesOfOthersAreNotOverwritten) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene("d.bin"));
    folder.Write("d.bin", test::SampleBin());
    folder.Write("my images/a.png", "\x89PNG mine");
    folder.Write("out/d.bin", "of another scene");
    folder.Write("out/my images/a.png", "\x89PNG other");
    Document::Load(folder / "in.gltf").Save(folder / "out/new.gltf");
    EXPECT_EQ(folder.Read("out/d.bin"), "of another scene");
    EXPECT_EQ(folder.Read("out/my images/a.png"), "\x89PNG other");
    const Document read = Document::Load(folder / "out/new.gltf");
    EXPECT_EQ(TextOf(*read.BufferBytes(0)), test::SampleBin());
    EXPECT_EQ(folder.Read("out/new.png"), "\x89PNG mine");
    EXPECT_EQ(read.Elements(Kind::kImage)[0].Find("uri")->String(), "new.png");
}

TEST(Save, AFailedSaveLeavesNothing) {
    const TemporaryFolder folder;
    folder.Write("in.gltf", test::TextScene("d.bin"));
    folder.Write("d.bin", test::SampleBin());
    std::filesystem::create_directories(folder / "out/taken.gltf/inside");
    EXPECT_THROW(Document::Load(folder / "in.gltf").Save(folder / "out/taken.gltf"), zr::Error);
    EXPECT_THROW(Document::Load(folder / "in.gltf").Save(folder / "d.bin/out.gltf"), zr::Error);
    EXPECT_THROW(Document::Load(folder / "in.gltf").Save(folder / "out.obj"), zr::Error);
    const auto stop = [] { throw std::runtime_error("stop"); };
    EXPECT_THROW(Document::Load(folder / "in.gltf").Save(folder / "new/out.gltf", stop), std::runtime_error);
    EXPECT_FALSE(std::filesystem::exists(folder / "new"));
    for (const std::string& file : folder.Files()) EXPECT_EQ(file.find(".tmp"), std::string::npos) << file;
    EXPECT_FALSE(std::filesystem::exists(folder / "out/taken.gltf/in.gltf"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out/taken.gltf/inside"));
}

// The sample in a folder of its own, with its buffer changed so that it must be written again.
Document Changed(const std::filesystem::path& file) {
    Document document = Document::Load(file);
    // Moves the image to where the weights were.
    const Document::BlockMove moves[] = {{0, 6, 0}, {8, 232, 8}, {248, 8, 240}};
    document.PackBuffer(0, moves);
    *document.Elements(Kind::kBufferView)[7].Find("byteOffset") = document.Tree().MakeIndex(240);
    return document;
}

TEST(Save, OverTheSourceBuffersGoUnderNewNames) {
    const TemporaryFolder folder;
    const std::string bin = test::SampleBin(), packed = bin.substr(0, 240) + bin.substr(248);
    folder.Write("s.gltf", test::TextScene("s.bin"));
    folder.Write("s.bin", bin);
    // No file of the old scene changes before the one that refers to the buffer.
    Document document = Changed(folder / "s.gltf");
    EXPECT_THROW(document.Save(folder / "s.gltf", [] { throw std::runtime_error("stop"); }),
                 std::runtime_error);
    EXPECT_EQ(folder.Files(), (Names{"s.bin", "s.gltf"}));
    EXPECT_EQ(folder.Read("s.bin"), bin);

    Changed(folder / "s.gltf").Save(folder / "s.gltf");
    EXPECT_EQ(folder.Files(), (Names{"s-1.bin", "s.gltf"}));
    EXPECT_EQ(folder.Read("s-1.bin").substr(0, 256), packed);
    // Saving again changes nothing.
    Document::Load(folder / "s.gltf").Save(folder / "s.gltf");
    EXPECT_EQ(folder.Files(), (Names{"s-1.bin", "s.gltf"}));
}

TEST(Save, OldBuffersGoUnlessOthersUseThem) {
    const TemporaryFolder folder;
    folder.Write("in/s.gltf", test::TextScene("d.bin"));
    folder.Write("in/d.bin", test::SampleBin());
    folder.Write("o.bin", "theirs");
    const auto save = [&](bool changed) {
        (changed ? Changed(folder / "in/s.gltf") : test::Sample()).Save(folder / "o.gltf");
    };
    save(true);
    EXPECT_EQ(folder.Read("o.bin"), "theirs");
    ASSERT_EQ(folder.Files(), (Names{"in/d.bin", "in/s.gltf", "o-1.bin", "o.bin", "o.gltf"}));
    save(false);
    ASSERT_EQ(folder.Files(), (Names{"in/d.bin", "in/s.gltf", "o-2.bin", "o.bin", "o.gltf"}));
    // Another scene shares the buffer.
    folder.Write("p.gltf", folder.Read("o.gltf"));
    save(true);
    EXPECT_EQ(folder.Files(),
              (Names{"in/d.bin", "in/s.gltf", "o-1.bin", "o-2.bin", "o.bin", "o.gltf", "p.gltf"}));
    // A document made in memory for a file supersedes the content of that file.
    for (int i = 0; i < 2; ++i) {
        Document made = Document::FromBytes(BytesOf(R"({"asset":{"version":"2.0"}})"), folder / "m.gltf");
        made.AppendView(BytesOf(std::string(4, static_cast<char>('a' + i))), 0, 0);
        made.Save(folder / "m.gltf");
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "m.bin"));
    EXPECT_EQ(folder.Read("m-1.bin"), "bbbb");
    std::filesystem::remove(folder / "m.gltf");
    std::filesystem::remove(folder / "m-1.bin");
    // A buffer with another name may not be the scene's alone.
    Changed(folder / "in/s.gltf").Save(folder / "in/s.gltf");
    EXPECT_TRUE(std::filesystem::exists(folder / "in/d.bin"));
    EXPECT_TRUE(std::filesystem::exists(folder / "in/s.bin"));
}

TEST(Save, NoFileOfTheSceneTakesTheNameOfAnother) {
    const TemporaryFolder folder;
    const auto scene = [](const char* buffer) {
        return R"({"asset":{"version":"2.0"},"images":[{"uri":"out.gltf"},{"uri":"a.png"},{"uri":"out.png"}],
            "buffers":[{"uri":")" +
               std::string(buffer) + R"(","byteLength":4}]})";
    };
    folder.Write("in.gltf", scene("out.bin"));
    folder.Write("out.bin", "data");
    folder.Write("out.gltf", "first");
    folder.Write("a.png", "second");
    folder.Write("out.png", "third");
    folder.Write("d/a.png", "theirs");
    for (const char* target : {"d/out.gltf", "out.gltf"}) {
        Document::Load(folder / "in.gltf").Save(folder / target);
        const Document read = Document::Load(folder / target);
        const auto image = [&](std::size_t i) {
            const auto path = read.FileOf(read.Elements(Kind::kImage)[i].Find("uri")->String(), "");
            return TextOf(ReadFile(read.Folder() / *path).View());
        };
        EXPECT_EQ(image(0), "first");
        EXPECT_EQ(image(1), "second");
        EXPECT_EQ(image(2), "third");
        EXPECT_EQ(TextOf(*read.BufferBytes(0)), "data");
    }
    EXPECT_EQ(folder.Read("d/a.png"), "theirs");

    // A file that is both image and buffer, and a buffer at the scene's own target.
    folder.Write("both.gltf", scene("a.png"));
    Document::Load(folder / "both.gltf").Save(folder / "e/x.gltf");
    EXPECT_EQ(folder.Read("e/a.png"), "second");
    folder.Write("self.gltf", scene("y.gltf"));
    folder.Write("y.gltf", "data");
    Document::Load(folder / "self.gltf").Save(folder / "y.gltf");
    EXPECT_EQ(TextOf(*Document::Load(folder / "y.gltf").BufferBytes(0)), "data");
}

TEST(Save, SharesTheTransactionOfItsCaller) {
    const TemporaryFolder folder;
    FileTransaction files;
    files.Add(folder / "out.bin", BytesOf("a report"));
    test::Sample().Save(folder / "out.gltf", files);
    EXPECT_TRUE(folder.NamedFiles().empty());
    files.Commit();
    EXPECT_EQ(folder.Files(), (Names{"out-1.bin", "out.bin", "out.gltf"}));

    FileTransaction same;
    same.Add(folder / "x.glb", BytesOf("a report"));
    EXPECT_THROW(test::Sample().Save(folder / "x.glb", same), zr::Error);
}

TEST(Save, LongNamesAreCutAtWholeCharacters) {
    const TemporaryFolder folder;
    std::string stem;
    while (stem.size() + 2 + 5 <= 255) stem += "\xC3\xA9";
    folder.Write(stem + ".bin", "theirs");
    test::Sample().Save(folder / (stem + ".gltf"));
    const Document read = Document::Load(folder / (stem + ".gltf"));
    EXPECT_EQ(TextOf(*read.BufferBytes(0)), test::SampleBin());
    EXPECT_EQ(folder.Read(stem + ".bin"), "theirs");
}

TEST(Save, TextKeepsItsForm) {
    const TemporaryFolder folder;
    const std::string flat = R"({"asset":{"version":"2.0"},"nodes":[{"name":"a"}]})",
                      indented = "{\n  \"asset\": {\n    \"version\": \"2.0\"\n  }\n}\n";
    for (const std::string& text : {flat + "\n", indented}) {
        test::FromText(text).Save(folder / "out.gltf");
        EXPECT_EQ(folder.Read("out.gltf"), text);
    }
}

TEST(Save, TheEndingDecidesInEitherCase) {
    const TemporaryFolder folder;
    test::FromText(R"({"asset":{"version":"2.0"}})").Save(folder / "out.GLB");
    EXPECT_EQ(folder.Read("out.GLB").substr(0, 4), "glTF");
    test::FromText(R"({"asset":{"version":"2.0"}})").Save(folder / "out.glTF");
    EXPECT_EQ(folder.Read("out.glTF").front(), '{');
}

}  // namespace
}  // namespace zr::gltf
