// SPDX-License-Identifier: MIT
#include "gltf/uri.h"

#include <gtest/gtest.h>

#include "base/file.h"

namespace zr::gltf {
namespace {

std::string Decoded(std::string_view uri) {
    const auto bytes = DecodeDataUri(uri);
    if (!bytes) return "refused";
    return {reinterpret_cast<const char*>(bytes->data()), bytes->size()};
}

TEST(Uri, DataIsDecoded) {
    EXPECT_EQ(Decoded("data:;base64,"), "");
    EXPECT_EQ(Decoded("data:a/b;base64,TWFu"), "Man");
    EXPECT_EQ(Decoded("DATA:a/b;BASE64,TWE="), "Ma");
    EXPECT_EQ(Decoded("data:a/b;base64,TQ"), "M");
    EXPECT_EQ(Decoded("data:a/b;base64,TWE%3D"), "Ma");
    EXPECT_EQ(Decoded("data:text/plain,a%20b"), "a b");
    for (const char* uri : {"data:a/b;base64", "data:;base64,T", "data:;base64,TW*u", "data:;base64,T=Wu",
                            "data:,%4", "data:,%zz"})
        EXPECT_EQ(Decoded(uri), "refused") << uri;
    std::string all;
    for (int i = 0; i < 256; ++i) {
        EXPECT_EQ(Decoded(EncodeDataUri("a/b", all)), all);
        all += static_cast<char>(i);
    }
    EXPECT_EQ(DataUriType("data:image/png;base64,AA"), "image/png");
}

TEST(Uri, PathsAreDecodedToNormalForm) {
    const auto path = [](std::string_view uri) {
        const auto found = PathOfUri(uri);
        return found ? PathToUtf8(*found) : std::string("none");
    };
    EXPECT_EQ(path("a%20b/%C3%A9.bin"), "a b/\xC3\xA9.bin");
    EXPECT_EQ(path("./x/../y.bin"), "y.bin");
    EXPECT_EQ(path("%2e%2e/a/..%2fx"), "../x");
    EXPECT_EQ(path("dir/a:b.bin"), "dir/a:b.bin");
    EXPECT_EQ(path("%2Fetc/passwd"), "/etc/passwd");
    for (const char* uri : {"", "a:b/c.bin", "http://h/x.bin", "file:///x", "a%00b", "a%", "a%4", "a%g0"})
        EXPECT_EQ(path(uri), "none") << uri;
    for (const char* name : {"plain.bin", "a b#?%.bin", "\xC3\xA9t\xC3\xA9/100%.png", "-._~"})
        EXPECT_EQ(path(EncodePath(PathFromUtf8(name))), name);
}

}  // namespace
}  // namespace zr::gltf
