// SPDX-License-Identifier: MIT
// JSON pointers in the document still lead to the same places after an export.
#include <gtest/gtest.h>

#include "app/operations/export/export_scene.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using gltf::Json;
using gltf::Kind;

// A node with a child and a mesh with morph targets, after an empty node.
constexpr const char* kPointingScene = R"({"asset": {"version": "2.0"},
    "extensionsUsed": ["KHR_animation_pointer", "KHR_interactivity", "KHR_lights_punctual", "KHR_node_visibility"],
    "scenes": [{"nodes": [0, 1]}],
    "nodes": [{}, {"mesh": 0, "children": [2, 3]}, {"camera": 0},
              {"extensions": {"KHR_lights_punctual": {"light": 0}, "KHR_node_visibility": {"visible": true}}}],
    "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}], "materials": [{}],
    "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "targets": [{}], "material": 0, "mode": 0}], "weights": [0]}],
    "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
                  {"componentType": 5126, "count": 1, "type": "SCALAR", "min": [0], "max": [0]},
                  {"componentType": 5126, "count": 1, "type": "VEC3"}, {"componentType": 5126, "count": 1, "type": "VEC4"},
                  {"componentType": 5121, "count": 1, "type": "SCALAR"}],
    "animations": [{"samplers": [{"input": 1, "output": 1}, {"input": 1, "output": 2}, {"input": 1, "output": 3},
                                 {"input": 1, "output": 4, "interpolation": "STEP"}],
        "channels": [{"sampler": 0, "target": {"node": 1, "path": "weights"}}, CHANNELS]}],
    "extensions": {"KHR_lights_punctual": {"lights": [{"type": "point"}]},
        "KHR_interactivity": {"graph": 0, "graphs": [{"declarations": [{"op": "pointer/get"}], "types": [{"signature": "float"}],
            "nodes": [{"declaration": 0, "configuration": {"pointer": {"value": ["/nodes/1/weights/0"]}}},
                      {"declaration": 0, "configuration": {"pointer": {"value": ["/nodes/3/translation"]}}}]}]}}})";

std::string Scene(std::initializer_list<std::pair<int, const char*>> pointers) {
    std::string channels;
    for (const auto& [sampler, pointer] : pointers) {
        channels +=
            (channels.empty() ? "" : ", ") + std::string(R"({"sampler": )") + std::to_string(sampler) +
            R"(, "target": {"path": "pointer", "extensions": {"KHR_animation_pointer": {"pointer": ")" +
            pointer + R"("}}}})";
    }
    std::string text = kPointingScene;
    return text.replace(text.find("CHANNELS"), 8, channels);
}

// "1 weights" or the pointer, channel by channel; then the pointers of the behaviour graph.
std::vector<std::string> Goals(const gltf::Document& document) {
    std::vector<std::string> goals;
    for (const Json& channel : document.Elements(Kind::kAnimation)[0].Find("channels")->Items()) {
        const Json& target = *channel.Find("target");
        const Json* extensions = target.Find("extensions");
        goals.push_back(
            extensions != nullptr
                ? std::string(extensions->Find("KHR_animation_pointer")->Find("pointer")->String())
                : std::to_string(gltf::IndexMember(target, "node")) + " " +
                      std::string(target.Find("path")->String()));
    }
    const Json& graph =
        document.Root().Find("extensions")->Find("KHR_interactivity")->Find("graphs")->Items()[0];
    for (const Json& node : graph.Find("nodes")->Items()) {
        const Json& pointer = *node.Find("configuration")->Find("pointer");
        goals.emplace_back(pointer.Find("value")->Items()[0].String());
    }
    return goals;
}

std::vector<std::string> GoalsAfter(const std::string& scene, std::uint32_t with, std::uint32_t without) {
    Host& host = test::TheHost();
    LoadedScene loaded(gltf::test::FromText(scene));
    ExportOptions options;
    options.exportFlags |= with;
    options.exportFlags &= ~without;
    gltf::Document document = ExportScene(host, std::move(loaded), options, [](double) {}).document;
    const gltf::test::TemporaryFolder folder;
    document.Save(folder / "out.gltf");
    return Goals(gltf::Document::Load(folder / "out.gltf"));
}

using Texts = std::vector<std::string>;

TEST(Pointers, FollowAMeshToItsNewNode) {
    const std::string scene = Scene({{0, "/nodes/1/weights"}, {1, "/nodes/1/scale"}});
    EXPECT_EQ(GoalsAfter(scene, vl::tk::kGroupSplit, 0),
              (Texts{"4 weights", "/nodes/4/weights", "/nodes/1/scale", "/nodes/4/weights/0",
                     "/nodes/3/translation"}));
    EXPECT_EQ(GoalsAfter(scene, vl::tk::kFlipAxes, 0)[1], "/nodes/4/weights");
    EXPECT_EQ(GoalsAfter(scene, 0, vl::tk::kAllRenderables),
              (Texts{"/nodes/1/scale", "/nodes/1/weights/0", "/nodes/3/translation"}))
        << "no weights without the mesh";
}

TEST(Pointers, FollowNodesThatOnlyChangeTheirIndex) {
    const std::string scene = Scene({{1, "/nodes/2/translation"},
                                     {3, "/nodes/3/extensions/KHR_node_visibility/visible"},
                                     {2, "/materials/0/pbrMetallicRoughness/baseColorFactor"},
                                     {0, "/cameras/0/perspective/yfov"},
                                     {0, "/meshes/0/weights"},
                                     {0, "/extensions/KHR_lights_punctual/lights/0/intensity"}});
    EXPECT_EQ(GoalsAfter(scene, 0, vl::tk::kKeepAllNodes),
              (Texts{"0 weights", "/nodes/1/translation", "/nodes/2/extensions/KHR_node_visibility/visible",
                     "/materials/0/pbrMetallicRoughness/baseColorFactor", "/cameras/0/perspective/yfov",
                     "/meshes/0/weights", "/extensions/KHR_lights_punctual/lights/0/intensity",
                     "/nodes/0/weights/0", "/nodes/2/translation"}));
}

}  // namespace
}  // namespace zr
