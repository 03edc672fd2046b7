// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "app/scene/node_layout.h"
#include "base/text.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using Indices = std::vector<std::size_t>;

constexpr std::size_t kNone = NodeLayout::kNone;

NodeLayout Layout(const std::string& scenes, const std::string& nodes, bool whole = true) {
    return LayOut(
        gltf::test::FromText(Join(R"({"asset": {"version": "2.0"}, )", scenes, R"("nodes": [)", nodes, "]}")),
        whole);
}

std::string Levels(const std::string& ids) {
    return Join(R"("extensions": {"MSFT_lod": {"ids": [)", ids, "]}}");
}

TEST(NodeLayout, WholeDocumentContainsEveryNodeOnce) {
    const std::string scenes = R"("scene": 1, "scenes": [{"nodes": [0, 2]}, {"nodes": [1, 0]}, {}], )";
    const std::string nodes = R"({}, {"children": [3]}, {}, {}, {"children": [5]}, {})";
    const NodeLayout whole = Layout(scenes, nodes);
    EXPECT_EQ(whole.order, (Indices{1, 3, 0, 2, 4, 5}));
    EXPECT_EQ(whole.scenes, (std::vector<Indices>{{0, 2}, {1, 0}, {}}));
    EXPECT_EQ(whole.Shown(), (std::vector<bool>{true, true, false, true, false, false}));
    const NodeLayout shown = Layout(scenes, nodes, false);
    EXPECT_EQ(shown.order, (Indices{1, 3, 0}));
    EXPECT_EQ(shown.Shown(), whole.Shown());
    EXPECT_EQ(Layout("", nodes, false).scenes, (std::vector<Indices>{{0, 1, 2, 4}}));
}

// A level without a parent gets the parent of the node that it stands for, also through another level; one
// that has a place of its own keeps it.
TEST(NodeLayout, LevelsGetTheParentOfTheirNode) {
    const NodeLayout layout = Layout(R"("scenes": [{"nodes": [0, 5]}], )",
                                     Join(R"({"children": [1, 2]}, {)", Levels("2, 3, 5"), "}, {}, {",
                                          Levels("4"), "}, {}, {", Levels("6"), "}, {}"));
    EXPECT_EQ(layout.standsFor, (Indices{kNone, kNone, kNone, 1, 1, kNone, 5}));
    EXPECT_EQ(layout.parents, (Indices{kNone, 0, 0, 0, 0, kNone, kNone}));
    EXPECT_EQ(layout.order, (Indices{0, 1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(layout.Shown(), (std::vector<bool>{true, true, true, false, false, true, false}));
    EXPECT_EQ(Layout("", Join("{", Levels("1"), "}, {}")).scenes, (std::vector<Indices>{{0}}));
}

// Levels in a ring, of themselves and of nodes below them, and a long chain.
TEST(NodeLayout, HostileLevelsTerminate) {
    const NodeLayout ring =
        Layout(R"("scenes": [{"nodes": [0]}], )",
               Join("{}, {", Levels("2"), "}, {", Levels("1, 2"), R"(}, {"children": [4]}, {)",
                    Levels("3, 5"), R"(}, {"children": [6]}, {)", Levels("3"), "}"));
    EXPECT_EQ(ring.order.size(), 7u);
    constexpr std::size_t kLong = 200000;
    std::string nodes = R"({"children": [1]})";
    for (std::size_t i = 1; i < kLong; ++i) nodes += Join(", {", Levels(std::to_string(i + 1)), "}");
    const NodeLayout chain = Layout(R"("scenes": [{"nodes": [0]}], )", nodes + ", {}");
    EXPECT_EQ(chain.parents[kLong], 0u);
    EXPECT_EQ(chain.order.size(), kLong + 1);
}

}  // namespace
}  // namespace zr
