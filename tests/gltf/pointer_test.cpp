// SPDX-License-Identifier: MIT
#include "gltf/pointer.h"

#include <gtest/gtest.h>

#include <string>

namespace zr::gltf {
namespace {

JsonTree Parsed(std::string text) {
    JsonTree tree;
    const std::size_t size = text.size();
    text += '#';
    tree.Parse(text.data(), size, "f");
    return tree;
}

TEST(Pointer, FollowsMembersItemsAndEscapes) {
    const JsonTree tree = Parsed(R"({"nodes":[{"name":"a"},{"name":"b"}],"a/b":{"~1":7,"":8}})");
    EXPECT_EQ(AtPointer(tree.root, ""), &tree.root);
    EXPECT_EQ(AtPointer(tree.root, "/nodes/1/name")->String(), "b");
    std::string pointer;
    AppendStep(pointer, "a/b");
    const std::string object = pointer;
    AppendStep(pointer, "~1");
    EXPECT_EQ(pointer, "/a~1b/~01");
    EXPECT_EQ(AtPointer(tree.root, pointer)->Number(), 7);
    EXPECT_EQ(AtPointer(tree.root, object + "/")->Number(), 8);
}

TEST(Pointer, LeadsNowhereWithoutAFault) {
    const JsonTree tree = Parsed(R"({"nodes":[{"name":"a"}]})");
    for (const char* pointer : {"nodes", "/", "/nodes/1", "/nodes/-1", "/nodes/0x", "/nodes/",
                                "/nodes/0/name/0", "/nodes/99999999999999999999", "/nodes~", "/~"})
        EXPECT_EQ(AtPointer(tree.root, pointer), nullptr) << pointer;
}

}  // namespace
}  // namespace zr::gltf
