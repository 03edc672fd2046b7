// SPDX-License-Identifier: MIT
// What options leave out does not affect the rest.
#include <gtest/gtest.h>

#include "app/operations/compare/evaluator.h"
#include "app/operations/export/export_records.h"
#include "app/operations/export/export_scene.h"
#include "base/text.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

using compare::Evaluator;
using gltf::Json;
using gltf::Kind;

ExportOptions Without(std::uint32_t exportFlags) {
    ExportOptions options;
    options.exportFlags &= ~exportFlags;
    return options;
}

gltf::Document ExportedWith(gltf::Document document, const ExportOptions& options) {
    LoadedScene loaded(std::move(document), SceneOptionsOf(options, true));
    return ExportScene(TheHost(), std::move(loaded), options, [](double) {}).document;
}

// The nodes with their objects: "name:" and m for a mesh, c for a camera, l for a light.
std::string Shown(const gltf::Document& document) {
    std::string shown;
    for (const Json& node : document.Elements(Kind::kNode)) {
        shown += Join(shown.empty() ? "" : " ", node.Find("name")->String(), ":");
        if (node.Find("mesh") != nullptr) shown += "m";
        if (node.Find("camera") != nullptr) shown += "c";
        if (node.Find("extensions") != nullptr) shown += "l";
    }
    return shown;
}

// Meshes of points, of lines, and of triangles and lines whose data cannot be read.
constexpr const char* kMeshes = R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1, 2, 3, 4]}],
    "extensionsUsed": ["KHR_draco_mesh_compression", "KHR_lights_punctual"],
    "nodes": [{"name": "points", "mesh": 0}, {"name": "eye", "mesh": 0, "camera": 0},
              {"name": "lamp", "mesh": 1, "extensions": {"KHR_lights_punctual": {"light": 0}}},
              {"name": "packed", "mesh": 2}, {"name": "lines", "mesh": 3, "camera": 0}],
    "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}],
    "extensions": {"KHR_lights_punctual": {"lights": [{"type": "point"}]}},
    "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "mode": 0}]},
               {"primitives": [{"attributes": {"POSITION": 0}, "mode": 1}]},
               {"primitives": [{"attributes": {"POSITION": 1}, "indices": 2,
                   "extensions": {"KHR_draco_mesh_compression": {"bufferView": 0, "attributes": {"POSITION": 0}}}}]},
               {"primitives": [{"attributes": {"POSITION": 3}, "mode": 3}]}],
    "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
                  {"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]},
                  {"componentType": 5123, "count": 3, "type": "SCALAR"},
                  {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]}],
    "bufferViews": [{"buffer": 0, "byteLength": 3}, {"buffer": 1, "byteLength": 36,
        "extensions": {"EXT_meshopt_compression": {"buffer": 0, "byteLength": 3}}}],
    "buffers": [{"byteLength": 3, "uri": "data:;base64,AAAA"}, {"byteLength": 36}]})";

TEST(LeftOut, DroppedMeshesLeaveNodesCamerasAndLights) {
    constexpr std::uint32_t kEmpty = vl::tk::kAllRenderables, kNodes = vl::tk::kKeepAllNodes;
    const auto shown = [](std::uint32_t without, std::uint32_t with = 0) {
        ExportOptions options = Without(without);
        options.exportFlags |= with;
        return Shown(ExportedWith(gltf::test::FromText(kMeshes), options));
    };
    EXPECT_EQ(shown(0), "points:m eye:mc lamp:ml packed:m lines:mc");
    EXPECT_EQ(shown(kEmpty), "points: eye:c lamp:ml packed:m lines:mc");
    EXPECT_EQ(shown(kEmpty, vl::tk::kNoSecondary), "points: eye:c lamp:l packed:m lines:c");
    EXPECT_EQ(shown(kEmpty | kNodes), "eye:c lamp:ml packed:m lines:mc");
    EXPECT_EQ(shown(kEmpty | kNodes | vl::tk::kExportCameras), "lamp:ml packed:m lines:m");
    EXPECT_EQ(shown(vl::tk::kExportLights), "points:m eye:mc lamp:m packed:m lines:mc");
}

// A fixed camera and a moving light aim at nodes that are left out: an empty node below a moving one, and the
// hidden child of a selector, which has its own skin.
gltf::Document Aiming() {
    const std::string json = R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 2, 3, 5]}],
    "extensionsUsed": ["ZR_scene", "KHR_lights_punctual"],
    "nodes": [{"name": "eye", "camera": 0, "translation": [0, 0, 5], "extensions": {"ZR_scene": {"target": 1}}},
              {"name": "aim", "translation": [0, 0, -1]}, {"name": "mover", "children": [1]},
              {"name": "selector", "extensions": {"ZR_scene": {"selector": true, "selected": 4}}, "children": [6, 4]},
              {"name": "chosen", "mesh": 0},
              {"name": "lamp", "translation": [3, 0, 0],
               "extensions": {"KHR_lights_punctual": {"light": 0}, "ZR_scene": {"target": 6}}},
              {"name": "other", "mesh": 0, "skin": 0, "children": [7]}, {"name": "joint"}],
    "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}], "skins": [{"joints": [7]}],
    "extensions": {"KHR_lights_punctual": {"lights": [{"type": "spot", "spot": {}}]}},
    "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
    "animations": [{"samplers": [{"input": 1, "output": 2}],
        "channels": [{"sampler": 0, "target": {"node": 2, "path": "translation"}},
                     {"sampler": 0, "target": {"node": 6, "path": "translation"}},
                     {"sampler": 0, "target": {"node": 5, "path": "translation"}}]}],
    "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
                  {"bufferView": 0, "componentType": 5126, "count": 3, "type": "SCALAR", "min": [0], "max": [2]},
                  {"bufferView": 0, "byteOffset": 12, "componentType": 5126, "count": 3, "type": "VEC3"}],
    "bufferViews": [{"buffer": 0, "byteLength": 48}], "buffers": [{"byteLength": 48}]})";
    const std::string bin = gltf::test::Floats({0, 1, 2, 1, 0, -4, 0, 3, -4, 2, 0, 1});
    return gltf::Document::FromBytes(BytesOf(gltf::test::Glb(json, bin)), "aiming.glb");
}

std::size_t Named(const gltf::Document& document, std::string_view name) {
    const auto nodes = document.Elements(Kind::kNode);
    std::size_t found = 0;
    while (found < nodes.size() && nodes[found].Find("name")->String() != name) ++found;
    return found;
}

TEST(LeftOut, AimsFollowTargetsThatAreLeftOut) {
    const gltf::Document all = ExportedWith(Aiming(), ExportOptions());
    Evaluator expected(all);
    for (const std::uint32_t without :
         {std::uint32_t{vl::tk::kAllChoices}, std::uint32_t{vl::tk::kKeepAllNodes},
          std::uint32_t{vl::tk::kAllChoices | vl::tk::kKeepAllNodes}}) {
        const gltf::Document document = ExportedWith(Aiming(), Without(without));
        const bool choosesOne = (without & vl::tk::kAllChoices) != 0;
        EXPECT_EQ(document.Elements(Kind::kSkin).size(), choosesOne ? 0u : 1u);
        EXPECT_EQ(Named(document, "other") == document.Elements(Kind::kNode).size(), choosesOne);
        Evaluator actual(document);
        for (const char* name : {"eye", "lamp"}) {
            for (int i = 0; i <= 40; ++i) {
                expected.SetTime(0, 0.05 * i);
                actual.SetTime(0, 0.05 * i);
                const compare::Affine& a = actual.World(Named(document, name));
                const compare::Affine& b = expected.World(Named(all, name));
                EXPECT_LT(Length(a.z - b.z) + Length(a.origin - b.origin), 1e-3)
                    << name << " at " << 0.05 * i;
            }
        }
    }
}

TEST(LeftOut, RefusesToDropJointsOfRemainingSkins) {
    constexpr const char* kSkinned = R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1]}],
        "nodes": [{"mesh": 0, "skin": 0}, {}], "skins": [{"joints": [1]}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}],
        "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]}]})";
    EXPECT_NO_THROW(ExportedWith(gltf::test::FromText(kSkinned), Without(vl::tk::kKeepAllNodes)));
    try {
        ExportedWith(gltf::test::FromText(kSkinned), Without(vl::tk::kKeepAllNodes | vl::tk::kExportBones));
        ADD_FAILURE() << "no error";
    } catch (const gltf::Error& error) {
        EXPECT_NE(std::string_view(error.what()).find("--no-bones with --drop-empty"), std::string_view::npos)
            << error.what();
    }
}

std::string Records(gltf::Document document, const ExportOptions& options) {
    LoadedScene loaded(std::move(document), SceneOptionsOf(options, false));
    const gltf::test::TemporaryFolder folder;
    FileTransaction files;
    ExportRecords(
        TheHost(), loaded, options, [](double) {}, files.Create(folder / "out.json"));
    files.Commit();
    return folder.Read("out.json");
}

// With kGroupKeysOnly, cameras and lights that follow a target have no keys either.
TEST(LeftOut, RecordsContainTheKeysThatTheToolsCount) {
    ExportOptions groups;
    groups.animFlags |= vl::tk::kGroupKeysOnly;
    for (const ExportOptions& options : {ExportOptions(), groups}) {
        gltf::JsonTree tree;
        std::string moving;
        for (const Json& node : tree.Build(Records(Aiming(), options)).Find("nodes")->Items())
            if (!node.Find("positionKeys")->Items().empty() || !node.Find("rotationKeys")->Items().empty())
                moving += Join(node.Find("name")->String(), " ");
        EXPECT_EQ(moving, options.animFlags != 0 ? "mover other " : "eye mover other lamp ");
    }
    ExportOptions withCamera;
    withCamera.exportFlags |= vl::tk::kExportSystemCamera;
    for (const ExportOptions& options : {ExportOptions(), withCamera}) {
        const std::string empty =
            Records(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{}]})"), options);
        gltf::JsonTree tree;
        EXPECT_EQ(tree.Build(empty).Find("nodes")->Items().size(),
                  options.Has(vl::tk::kExportSystemCamera) ? 1u : 0u)
            << empty;
    }
}

}  // namespace
}  // namespace zr
