// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "tests/gltf/outside.h"

namespace zr::gltf {
namespace {

using test::Buffer;
using test::Image;
using test::Outside;

TEST(Resources, StayInTheFolderOfTheScene) {
    const Outside outside;
    for (const char* uri : {"../secret.bin", "%2e%2e/secret.bin", "..%2fsecret.bin", "a/../../secret.bin"}) {
        EXPECT_EQ(outside.Fault(Buffer(uri)), "/buffers/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Image(uri)), "/images/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Buffer(uri), true), "") << uri;
        EXPECT_EQ(outside.Fault(Image(uri), true), "") << uri;
    }
    EXPECT_EQ(outside.Fault(Image("/secret.bin")), "/images/0/uri");
    for (const char* uri : {"x.bin", "a/../x.bin", "../scene/x.bin/../x.bin"})
        EXPECT_EQ(outside.Fault(Buffer(uri)), std::string(uri).starts_with("..") ? "/buffers/0/uri" : "")
            << uri;
    for (const char* uri : {"folder.bin", "."})
        for (bool allowed : {false, true}) {
            EXPECT_EQ(outside.Fault(Buffer(uri), allowed), "/buffers/0/uri") << uri;
            EXPECT_EQ(outside.Fault(Image(uri), allowed), "/images/0/uri") << uri;
        }
    EXPECT_EQ(outside.Fault(Buffer("http://h/x.bin")), "/buffers/0/uri");
    EXPECT_EQ(outside.Fault(R"("extensions":{"KHR_audio_emitter":{"audio":[{},{"uri":"../x.mp3"}]}})"),
              "/extensions/KHR_audio_emitter/audio/1/uri");
}

TEST(Resources, OutsideOnesThatAreAllowedAreCopied) {
    const Outside outside;
    Document document = outside.Load(Buffer("../secret.bin") + "," + Image("../other/x.bin"), true);
    document.Save(outside.folder / "new/out.gltf");
    const Document read = Document::Load(outside.folder / "new/out.gltf");
    EXPECT_TRUE(read.Warnings().empty());
    EXPECT_EQ(outside.folder.Read("new/out.bin"), "data");
    EXPECT_EQ(outside.folder.Read("secret.bin"), "data");
}

TEST(Resources, MissingOnesCauseWarnings) {
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
