// SPDX-License-Identifier: MIT
#include "app/operations/export/node_choice.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "app/operations/export/export_scene.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Kind;
using Names = std::vector<std::string>;

// A house with a door on its own layer, a camera that aims at a node beside it, a skinned skeleton whose leg
// has a mesh too, and a tree whose level of detail is the roof.
gltf::Document House() {
    return gltf::test::FromText(R"({
      "asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0, 5, 6, 7, 9]}],
      "extensionsUsed": ["ZR_scene", "MSFT_lod"],
      "nodes": [
        {"name": "house", "mesh": 0, "children": [1, 2, 3]},
        {"name": "roof", "mesh": 0}, {"name": "door", "mesh": 0, "children": [4]},
        {"name": "cam", "camera": 0, "extensions": {"ZR_scene": {"target": 5}}}, {"name": "knob", "mesh": 1},
        {"name": "aim"}, {"name": "body", "mesh": 0, "skin": 0},
        {"name": "hip", "children": [8]}, {"name": "leg", "mesh": 0},
        {"name": "tree", "mesh": 0, "extensions": {"MSFT_lod": {"ids": [1]}}}],
      "cameras": [{"type": "orthographic", "orthographic": {"xmag": 1, "ymag": 1, "znear": 1, "zfar": 2}}],
      "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]},
                 {"primitives": [{"attributes": {"POSITION": 0}}]}],
      "skins": [{"joints": [7, 8]}],
      "animations": [{"name": "walk", "samplers": [{"input": 1, "output": 2}], "channels": [
        {"sampler": 0, "target": {"node": 8, "path": "translation"}},
        {"sampler": 0, "target": {"node": 0, "path": "translation"}}]}],
      "accessors": [
        {"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
        {"componentType": 5126, "count": 1, "type": "SCALAR", "min": [0], "max": [0]},
        {"componentType": 5126, "count": 1, "type": "VEC3"}],
      "extensions": {"ZR_scene": {"layers": [{"name": "doors", "nodes": [2, 4]}, {"name": "rest", "nodes": [0, 1]}]}}})");
}

struct Chosen {
    Names nodes;
    Names bare;  // of these, the ones that show nothing
    Names notes;
    gltf::Document document;
};

Chosen Choose(const NodeChoice& choice) {
    Host& host = test::TheHost();
    ExportOptions options;
    options.nodes = choice;
    Exported exported = ExportScene(host, LoadedScene(House()), options, [](double) {});
    Chosen chosen{{}, {}, exported.report.nodeNotes, std::move(exported.document)};
    for (const gltf::Json& node : chosen.document.Elements(Kind::kNode)) {
        const std::string name(node.Find("name")->String());
        chosen.nodes.push_back(name);
        if (node.Find("mesh") == nullptr && node.Find("camera") == nullptr) chosen.bare.push_back(name);
    }
    std::sort(chosen.nodes.begin(), chosen.nodes.end());
    std::sort(chosen.bare.begin(), chosen.bare.end());
    return chosen;
}

TEST(NodeChoice, AnExcludedNodeGoesWithItsDescendants) {
    const Chosen chosen = Choose({.exclude = {"do*", "nothing"}});
    EXPECT_EQ(chosen.nodes, (Names{"aim", "body", "cam", "hip", "house", "leg", "roof", "tree"}));
    EXPECT_EQ(chosen.notes, Names{"no node's name matches \"nothing\""});
    // The knob's mesh is unused now.
    EXPECT_EQ(chosen.document.Elements(Kind::kMesh).size(), 1U);
    EXPECT_EQ(chosen.document.Elements(Kind::kAnimation)[0].Find("channels")->Items().size(), 2U);
}

TEST(NodeChoice, NodesNeededByShownOnesStayAsGroups) {
    const Chosen knob = Choose({.only = {"knob"}});
    EXPECT_EQ(knob.nodes, (Names{"door", "house", "knob"}));
    EXPECT_EQ(knob.bare, (Names{"door", "house"}));
    EXPECT_TRUE(knob.notes.empty());
    EXPECT_TRUE(knob.document.Elements(Kind::kSkin).empty());
    EXPECT_TRUE(knob.document.Elements(Kind::kCamera).empty());
    // The house keeps its motion.
    EXPECT_EQ(knob.document.Elements(Kind::kAnimation)[0].Find("channels")->Items().size(), 1U);

    const Chosen body = Choose({.only = {"body"}});
    EXPECT_EQ(body.nodes, (Names{"body", "hip", "leg"}));
    EXPECT_EQ(body.bare, (Names{"hip", "leg"}));
    EXPECT_EQ(body.document.Elements(Kind::kSkin).size(), 1U);

    const Chosen cam = Choose({.only = {"cam"}, .exclude = {"aim"}});
    EXPECT_EQ(cam.nodes, (Names{"aim", "cam", "house"}));
    EXPECT_EQ(cam.notes, Names{"node \"aim\" stays: node \"cam\" aims at it"});
}

TEST(NodeChoice, ReportsWhatStaysAndWhatIsLost) {
    const Chosen bones = Choose({.exclude = {"hip"}});
    EXPECT_EQ(bones.notes, Names{"node \"hip\" and 1 more stay: joints of the skin of node \"body\""});
    EXPECT_TRUE(std::find(bones.bare.begin(), bones.bare.end(), "leg") != bones.bare.end());
    const Chosen roof = Choose({.exclude = {"roof"}});
    EXPECT_EQ(roof.notes,
              Names{"/nodes/9/extensions/MSFT_lod/ids/0: refers to node \"roof\", which is left out"});
}

TEST(NodeChoice, TakesLayersByName) {
    const Chosen doors = Choose({.layers = {"doors"}});
    EXPECT_EQ(doors.nodes, (Names{"door", "house", "knob"}));
    EXPECT_EQ(doors.bare, Names{"house"});
    const Chosen rest = Choose({.exclude = {"roof"}, .layers = {"rest"}});
    EXPECT_EQ(rest.nodes, Names{"house"});
    EXPECT_THROW(Choose({.layers = {"windows"}}), std::runtime_error);
    EXPECT_THROW(Choose({.only = {"windows"}}), std::runtime_error);
}

}  // namespace
}  // namespace zr
