// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "tests/gltf/outside.h"

namespace zr::gltf {
namespace {

namespace fs = std::filesystem;
using test::Buffer;
using test::Image;

TEST(Resources, AreFollowedToWhereLinksLead) {
    const test::Outside outside;
    const fs::path scene = outside.folder / "scene";
    fs::create_symlink("../secret.bin", scene / "link.bin");
    fs::create_directory_symlink("../other", scene / "linked");
    fs::create_symlink("x.bin", scene / "inner.bin");
    mkfifo((scene / "pipe.bin").c_str(), 0600);
    const std::string absolute = (outside.folder / "secret.bin").string();
    for (const std::string& uri : {std::string("link.bin"), std::string("linked/x.bin"), absolute}) {
        EXPECT_EQ(outside.Fault(Buffer(uri)), "/buffers/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Image(uri)), "/images/0/uri") << uri;
        EXPECT_EQ(outside.Fault(Buffer(uri), true), "") << uri;
        EXPECT_EQ(outside.Fault(Image(uri), true), "") << uri;
    }
    EXPECT_EQ(outside.Fault(Buffer("inner.bin")), "");
    for (bool allowed : {false, true})
        EXPECT_EQ(outside.Fault(Buffer("pipe.bin"), allowed), "/buffers/0/uri");
}

}  // namespace
}  // namespace zr::gltf
