// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "gltf/document.h"
#include "tests/gltf/sample.h"

namespace zr::gltf {
namespace {

namespace fs = std::filesystem;
using test::TemporaryFolder;

// A scene folder with files outside it, and links, a pipe and a folder in it.
struct Outside {
    TemporaryFolder folder;

    Outside() {
        folder.Write("secret.bin", "data");
        folder.Write("other/x.bin", "data");
        folder.Write("scene/x.bin", "data");
        fs::create_symlink("../secret.bin", folder / "scene/link.bin");
        fs::create_directory_symlink("../other", folder / "scene/linked");
        fs::create_symlink("x.bin", folder / "scene/inner.bin");
        mkfifo((folder / "scene/pipe.bin").c_str(), 0600);
        fs::create_directory(folder / "scene/folder.bin");
    }

    Document Load(const std::string& lists, bool allowOutside = false) const {
        folder.Write("scene/s.gltf", R"({"asset":{"version":"2.0"},)" + lists + "}");
        return Document::Load(folder / "scene/s.gltf", {.allowOutside = allowOutside});
    }

    // The place of the fault met; "": it loads.
    std::string Fault(const std::string& lists, bool allowOutside = false) const {
        try {
            Load(lists, allowOutside);
            return "";
        } catch (const Error& error) {
            EXPECT_EQ(error.Kind(), ErrorKind::kUri) << error.what();
            return error.Place();
        }
    }
};

std::string Buffer(const std::string& uri) {
    return R"("buffers":[{"byteLength":4,"uri":")" + uri + R"("}])";
}

std::string Image(const std::string& uri) {
    return R"("images":[{"uri":")" + uri + R"("}])";
}

TEST(Resources, StayInTheFolderOfTheScene) {
    const Outside outside;
    const std::string absolute = (outside.folder / "secret.bin").string();
    for (const std::string& uri : {std::string("../secret.bin"), std::string("%2e%2e/secret.bin"),
                                   std::string("..%2fsecret.bin"), std::string("a/../../secret.bin"),
                                   std::string("link.bin"), std::string("linked/x.bin"), absolute}) {
        EXPECT_EQ(outside.Fault(Buffer(uri)), "/buffers/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Image(uri)), "/images/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Buffer(uri), true), "") << uri;
        EXPECT_EQ(outside.Fault(Image(uri), true), "") << uri;
    }
    for (const char* uri : {"x.bin", "inner.bin", "a/../x.bin", "../scene/x.bin/../x.bin"})
        EXPECT_EQ(outside.Fault(Buffer(uri)), std::string(uri).starts_with("..") ? "/buffers/0/uri" : "")
            << uri;
    for (const char* uri : {"pipe.bin", "folder.bin", "."})
        for (bool allowed : {false, true}) {
            EXPECT_EQ(outside.Fault(Buffer(uri), allowed), "/buffers/0/uri") << uri;
            EXPECT_EQ(outside.Fault(Image(uri), allowed), "/images/0/uri") << uri;
        }
    EXPECT_EQ(outside.Fault(Buffer("http://h/x.bin")), "/buffers/0/uri");
    EXPECT_EQ(outside.Fault(R"("extensions":{"KHR_audio_emitter":{"audio":[{},{"uri":"../x.mp3"}]}})"),
              "/extensions/KHR_audio_emitter/audio/1/uri");
}

TEST(Resources, OutsideOnesThatAreAllowedAreTakenAlong) {
    const Outside outside;
    Document document = outside.Load(Buffer("../secret.bin") + "," + Image("../other/x.bin"), true);
    document.Save(outside.folder / "new/out.gltf");
    const Document read = Document::Load(outside.folder / "new/out.gltf");
    EXPECT_TRUE(read.Warnings().empty());
    EXPECT_EQ(outside.folder.Read("new/out.bin"), "data");
    EXPECT_EQ(outside.folder.Read("secret.bin"), "data");
}

TEST(Resources, MissingOnesAreWarnedOf) {
    const Outside outside;
    const Document document = outside.Load(
        R"("images":[{"uri":"x.bin"},{"uri":"gone.png"},{"uri":"http://x/y.png"},{"uri":"data:;base64,"}])");
    ASSERT_EQ(document.Warnings().size(), 2U);
    EXPECT_EQ(document.Warnings()[0].Place(), "/images/1/uri");
    EXPECT_TRUE(std::string_view(document.Warnings()[0].what()).ends_with("\"gone.png\" is missing"));
    EXPECT_EQ(document.Warnings()[1].Place(), "/images/2/uri");
}

}  // namespace
}  // namespace zr::gltf
