// SPDX-License-Identifier: MIT
// The effect of the passes for axes, aims and names on the exported document.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "app/operations/export/export_records.h"
#include "app/operations/export/export_scene.h"
#include "app/operations/export/split_aims.h"
#include "app/scene/curves.h"
#include "app/scene/flip_objects.h"
#include "app/services/rename_rules.h"
#include "gltf/accessor.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

using M = vl::Matrix4<double>;
using gltf::Kind;

Exported Export(LoadedScene& loaded, const ExportOptions& options, std::string* renameMap = nullptr) {
    return ExportScene(
        TheHost(), std::move(loaded), options, [](double) {}, renameMap);
}

LoadedScene Reloaded(Exported& exported) {
    const gltf::test::TemporaryFolder folder;
    exported.document.Save(folder / "out.glb");
    return LoadedScene(gltf::Document::Load(folder / "out.glb"));
}

M World(vl::zr::Node* node) {
    M m;
    node->GetWorldMatrix(&m, 0);
    return m;
}

TEST(FlipObjects, MovesContentToChildren) {
    gltf::Document document =
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1]}],
        "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0}, "targets": [{}]}]}],
        "accessors": [{"componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [0, 0, 0]},
                      {"componentType": 5126, "count": 1, "type": "SCALAR", "min": [0], "max": [0]},
                      {"componentType": 5126, "count": 1, "type": "VEC3"}], "skins": [{"joints": [0, 2]}],
        "nodes": [{"mesh": 0, "skin": 0, "weights": [1], "name": "m", "children": [2]},
                  {"camera": 0, "extensions": {"ZR_scene": {"target": 0, "pivot": [1, 2, 3]}}},
                  {"extensions": {"ZR_scene": {"pivot": [1, 2, 3], "pivotGroup": true}}}, {"mesh": 0}],
        "animations": [{"samplers": [{"input": 1, "output": 1}, {"input": 1, "output": 2}], "channels": [{"sampler": 0, "target": {"node": 0, "path": "weights"}},
                                                     {"sampler": 1, "target": {"node": 0, "path": "scale"}}]}]})");
    FlipObjects(document);
    gltf::JsonTree tree;
    const gltf::Json expected = tree.Build(
        R"([{"name": "m", "children": [2, 4]}, {"children": [5]},
        {"extensions": {"ZR_scene": {"pivot": [1, 3, 2], "pivotGroup": true}}}, {"children": [6]},
        {"mesh": 0, "skin": 0, "weights": [1], "matrix": [1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1]},
        {"camera": 0, "extensions": {"ZR_scene": {"target": 0}}, 
         "matrix": [-1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, -1, -3, -2, 1]},
        {"mesh": 0, "matrix": [1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1]}])");
    ASSERT_EQ(document.Elements(Kind::kNode).size(), 7u);
    for (std::size_t i = 0; i < 7; ++i) {
        EXPECT_TRUE(gltf::EqualJson(document.Elements(Kind::kNode)[i], expected.Items()[i]))
            << gltf::WriteJson(document.Elements(Kind::kNode)[i], false);
    }
    const auto channels = document.Elements(Kind::kAnimation)[0].Find("channels")->Items();
    EXPECT_EQ(gltf::IndexMember(*channels[0].Find("target"), "node"), 4u);
    EXPECT_EQ(gltf::IndexMember(*channels[1].Find("target"), "node"), 0u);
    const auto binds = gltf::ReadFloats(
        document, gltf::IndexMember(document.Elements(Kind::kSkin)[0], "inverseBindMatrices"));
    EXPECT_EQ(binds, (std::vector<float>{1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1,  //
                                         1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1}));
}

// A fixed camera and a target that passes by: the exported camera node itself turns towards it, without the
// host's knowledge of the target.
TEST(ExportedAim, FollowsTheTarget) {
    for (const std::uint32_t targets : {vl::tk::kCameraTargetRecords, vl::tk::kCameraTargetKeys}) {
        LoadedScene loaded(
            gltf::test::FromText(R"({"asset": {"version": "2.0"}, "extensionsUsed": ["ZR_scene"],
            "scenes": [{"nodes": [0, 1]}], "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}],
            "nodes": [{"camera": 0, "translation": [0, 0, 1], "extensions": {"ZR_scene": {"target": 1}}}, {}]})"));
        auto* track =
            loaded.Node(1)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"pass"));
        track->AddPosition(0)->m_value = {-3, 0, -1};
        track->AddPosition(2)->m_value = {3, 1, -1};
        ExportOptions options;
        options.exportFlags |= targets;
        Exported exported = Export(loaded, options);
        EXPECT_EQ(exported.report.keysBefore, 2u);
        EXPECT_GT(exported.report.keysAfter, 10u);
        EXPECT_LT(exported.report.deviation, 0.003);
        LoadedScene after = Reloaded(exported);
        for (int step = 0; step <= 40; ++step) {
            after.Scene().SetCurrentTime(0.05f * static_cast<float>(step), 1);
            const M camera = World(after.Node(0));
            const M target = World(after.Node(1));
            const double to[3] = {target.m[3][0] - camera.m[3][0], target.m[3][1] - camera.m[3][1],
                                  target.m[3][2] - camera.m[3][2]};
            const double distance = std::sqrt(to[0] * to[0] + to[1] * to[1] + to[2] * to[2]);
            for (int i = 0; i < 3; ++i)
                EXPECT_NEAR(-camera.m[2][i], to[i] / distance, 0.003) << "step " << step;
        }
    }
}

// What is below a camera or light that aims, or shares its node, does not turn with it.
TEST(ExportedAim, TurnsNothingElse) {
    gltf::Document document =
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "extensionsUsed": ["ZR_scene"],
            "scenes": [{"nodes": [0, 1, 2, 5]}], "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}],
            "extensions": {"KHR_lights_punctual": {"lights": [{"type": "spot"}]}},
            "skins": [{"joints": [5]}], "meshes": [{"primitives": [{"attributes": {}}]}],
            "nodes": [{"translation": [0, 0, -9]},
                {"camera": 0, "children": [3], "extensions": {"ZR_scene": {"target": 0}}},
                {"camera": 0, "extensions": {"KHR_lights_punctual": {"light": 0}, "ZR_scene": {"target": 0}}},
                {"name": "held", "translation": [1, 2, 3], "children": [4]}, {"mesh": 0, "skin": 0},
                {"extensions": {"KHR_lights_punctual": {"light": 0},
                                "ZR_scene": {"target": 0, "pivot": [1, 0, 0], "pivotGroup": true}}}]})");
    ExportOptions options;
    SplitAims(document, options);
    ASSERT_EQ(document.Elements(Kind::kNode).size(), 9u);
    LoadedScene loaded(std::move(document));
    auto* track =
        loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"pass"));
    track->AddPosition(0)->m_value = {-3, 0, -9};
    track->AddPosition(2)->m_value = {3, 1, -9};
    Exported exported = Export(loaded, options);
    EXPECT_LT(exported.report.deviation, 1e-3);
    LoadedScene after = Reloaded(exported);
    after.Scene().SetCurrentTime(1.5F, 1);
    EXPECT_EQ(World(after.Node(3)).m[3][0], 1);
    for (const std::size_t aimed : {6U, 7U, 8U}) {
        EXPECT_LT(World(after.Node(aimed)).m[0][0], 0.999) << "node " << aimed << " turns";
    }
    EXPECT_TRUE(World(after.Node(1)).IsIdentity(1e-6));
    EXPECT_TRUE(World(after.Node(2)).IsIdentity(1e-6));
}

// A step curve that ends before the animation holds its value to the end or, played backwards, from the
// start; a channel with an unknown target is retimed too.
TEST(ExportedSteps, AreHeldBackwardsToo) {
    ExportOptions options;
    options.animFlags |= vl::tk::kReverseTime;
    LoadedScene loaded(
        gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [{}],
        "extensionsUsed": ["KHR_animation_pointer"], "materials": [{}],
        "buffers": [{"byteLength": 56, "uri": "data:;base64,AAAAAAAAgD8AAABAAACgQAAAwEAAAOBAAAAAAAAAgEAAAAAAAAAAAAAAAAAAAIA/AACAPwAAgD8="}],
        "bufferViews": [{"buffer": 0, "byteLength": 56}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "SCALAR", "min": [0], "max": [2]},
            {"bufferView": 0, "byteOffset": 12, "componentType": 5126, "count": 3, "type": "SCALAR"},
            {"bufferView": 0, "byteOffset": 24, "componentType": 5126, "count": 2, "type": "SCALAR", "min": [0], "max": [4]},
            {"bufferView": 0, "byteOffset": 32, "componentType": 5126, "count": 2, "type": "VEC3"}],
        "animations": [{"samplers": [{"input": 0, "output": 1, "interpolation": "STEP"}, {"input": 2, "output": 3}],
            "channels": [{"sampler": 1, "target": {"node": 0, "path": "translation"}},
                {"sampler": 0, "target": {"path": "pointer",
                    "extensions": {"KHR_animation_pointer": {"pointer": "/materials/0/alphaCutoff"}}}},
                {"sampler": 0, "target": {"path": "weights"}}]}]})"),
        SceneOptionsOf(options, true));
    Exported exported = Export(loaded, options);
    EXPECT_EQ(exported.report.valueDeviation, 0);
    const gltf::Json& animation = exported.document.Elements(Kind::kAnimation)[0];
    for (const std::size_t channel : {1U, 2U}) {
        const gltf::Json& sampler =
            animation.Find("samplers")
                ->Items()[gltf::IndexMember(animation.Find("channels")->Items()[channel], "sampler")];
        EXPECT_EQ(gltf::ReadFloats(exported.document, gltf::IndexMember(sampler, "input")),
                  (std::vector<float>{0, 2, 3, 4}));
        EXPECT_EQ(gltf::ReadFloats(exported.document, gltf::IndexMember(sampler, "output")),
                  (std::vector<float>{7, 6, 5, 5}));
    }
}

// A target record without a node becomes a node with the motion sampled for it.
TEST(ExportedAim, TargetWithoutNodeMovesToo) {
    LoadedScene loaded(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}],
        "nodes": [{"name": "arm", "children": [1]}, {"camera": 0}],
        "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}]})"));
    auto* track =
        loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"a"));
    track->AddPosition(0)->m_value = {0, 0, 0};
    track->AddPosition(1)->m_value = {4, 0, 0};
    ExportOptions options;
    options.exportFlags |= vl::tk::kCameraTargetRecords;
    Exported exported = Export(loaded, options);
    LoadedScene after = Reloaded(exported);
    ASSERT_NE(after.Node(2), nullptr);
    auto* controller = static_cast<kernix::TransformControllerModel*>(after.Node(2)->GetController(99));
    ASSERT_NE(controller, nullptr);
    EXPECT_EQ(controller->GetTrackKeyCount(vl::zr::kKeyPosition, nullptr), 2);
}

// Exact half turns, whose direction depends only on the signs of the keys.
TEST(ExportedTurns, KeepTheirDirectionBelowASceneMatrix) {
    std::mt19937 random(3);
    std::normal_distribution<double> number;
    const auto unit = [&](double w) {
        const double x = number(random), y = number(random), z = number(random);
        const double length = std::sqrt(x * x + y * y + z * z + w * w);
        return vl::Quaternion(static_cast<float>(x / length), static_cast<float>(y / length),
                              static_cast<float>(z / length), static_cast<float>(w / length));
    };
    for (int round = 0; round < 40; ++round) {
        SCOPED_TRACE(round);
        Curve turns{
            vl::zr::kInterpolationLinear, {0, 1, 2, 3}, {0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 0, -1, 0, 1, 0, 0}};
        if (round > 0) {
            vl::Quaternion q = unit(number(random));
            turns.values.clear();
            for (std::size_t i = 0; i < turns.times.size(); ++i) {
                const float sign = random() % 2 == 0 ? 1 : -1;
                turns.values.insert(turns.values.end(), {sign * q.x, sign * q.y, sign * q.z, sign * q.w});
                q = q * unit(0);
            }
        }
        LoadedScene loaded(gltf::test::FromText(
            R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}], "nodes": [{"name": "box"}]})"));
        auto* track =
            loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"a"));
        PutKeys(*track, vl::zr::kKeyRotation, turns);
        ExportOptions options;
        options.sceneMatrix.Scale(vl::Vector3<double>{2, 2, 2});
        options.sceneMatrix.RotateX(round % 2 == 0 ? 1.5707963267948966 : 0.7);
        if (round % 3 == 0) options.animFlags |= vl::tk::kResampleKeys;
        const Exported exported = ExportScene(TheHost(), std::move(loaded), options, [](double) {});
        EXPECT_LT(exported.report.deviation, 1e-4);
    }
}

TEST(ExportedNames, ReachNodesMaterialsAndTheMap) {
    LoadedScene loaded(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}],
        "materials": [{"name": "Red wall"}, {"name": "red_wall"}],
        "nodes": [{"name": "box", "children": [1]}, {"name": "box"}]})"));
    RenameRules rules;
    rules.Add("wall=Wall");
    ExportOptions options;
    options.exportFlags |= vl::tk::kAssignNames;
    options.nameFlags |= vl::tk::kNamesUnique;
    options.maxMaterialNameLength = 20;
    options.rename = RenameRules::Rename;
    options.renameContext = &rules;
    std::string map;
    const gltf::Document document = Export(loaded, options, &map).document;
    EXPECT_EQ(document.Elements(Kind::kNode)[0].Find("name")->String(), "box");
    EXPECT_EQ(document.Elements(Kind::kNode)[1].Find("name")->String(), "box1");
    EXPECT_EQ(document.Elements(Kind::kMaterial)[0].Find("name")->String(), "Red_Wall");
    EXPECT_EQ(document.Elements(Kind::kMaterial)[1].Find("name")->String(), "red_Wall1");
    gltf::JsonTree tree;
    const gltf::Json expected = tree.Build(R"([{"path": "/box", "name": "box", "exported": "box"},
                                               {"path": "/box/box", "name": "box", "exported": "box1"}])");
    EXPECT_TRUE(gltf::EqualJson(tree.Build(map), expected)) << map;
}

TEST(ExportedRecords, ContainThePoseOfTracksWithoutKeysOnRequest) {
    for (const bool wanted : {false, true}) {
        LoadedScene loaded(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0]}],
            "nodes": [{"translation": [1, 2, 3], "rotation": [0, 0.6, 0, 0.8]}]})"));
        auto* track =
            loaded.Node(0)->AddTransformController()->AddTransformTrack(loaded.Scene().AddAnimation(u"grow"));
        for (const float time : {0.0f, 1.0f}) track->AddScale(time)->m_value = {1 + time, 1, 1};
        ExportOptions options;
        if (wanted) options.animFlags |= vl::tk::kAtLeastOneKey;
        const gltf::test::TemporaryFolder folder;
        FileTransaction files;
        std::string map;
        ExportRecords(
            TheHost(), loaded, options, [](double) {}, files.Create(folder / "out.json"), &map);
        files.Commit();
        gltf::JsonTree tree;
        EXPECT_EQ(tree.Build(map).Items().size(), 1u);
        const gltf::Json root = tree.Build(folder.Read("out.json"));
        const gltf::Json& node = root.Find("nodes")->Items()[0];
        EXPECT_EQ(node.Find("scaleKeys")->Items().size(), 2u);
        const gltf::Json expected = tree.Build(
            wanted ? R"([[{"time": 0, "value": [1, 2, 3]}], [{"time": 0, "value": [0, 0.6, 0, 0.8]}]])"
                   : "[[], []]");
        EXPECT_TRUE(gltf::EqualJson(*node.Find("positionKeys"), expected.Items()[0])) << wanted;
        EXPECT_TRUE(gltf::EqualJson(*node.Find("rotationKeys"), expected.Items()[1])) << wanted;
    }
}

// Compressed keys that cannot be read may be exported unchanged; exports that would change them are refused.
TEST(UnreadKeys, AreExportedUnchangedOrRefused) {
    const auto load = [] {
        return LoadedScene(
            gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1]}],
            "nodes": [{"translation": [1, 2, 3]}, {}],
            "animations": [{"samplers": [{"input": 0, "output": 1}],
                            "channels": [{"sampler": 0, "target": {"node": 0, "path": "translation"}}]}],
            "accessors": [{"bufferView": 0, "componentType": 5126, "count": 1, "type": "SCALAR", "min": [0], "max": [0]},
                          {"componentType": 5126, "count": 1, "type": "VEC3"}],
            "bufferViews": [{"buffer": 1, "byteLength": 4,
                             "extensions": {"EXT_meshopt_compression": {"buffer": 0, "byteLength": 3}}}],
            "buffers": [{"byteLength": 3, "uri": "data:;base64,AAAA"}, {"byteLength": 4}]})"));
    };
    LoadedScene loaded = load();
    Exported exported = Export(loaded, ExportOptions());
    EXPECT_EQ(exported.report.unreadKeys,
              "/animations/0/channels/0: keys that cannot be read are exported unchanged");
    EXPECT_EQ(Reloaded(exported).Skipped().size(), 1u);

    LoadedScene still = load();
    ExportOptions options;
    options.exportFlags |= vl::tk::kIgnoreAnimation;
    EXPECT_EQ(Export(still, options).report.unreadKeys, "");

    ExportOptions turned, reversed, without;
    turned.sceneMatrix.RotateX(1);
    reversed.animFlags |= vl::tk::kReverseTime;
    without.exportFlags &= ~std::uint32_t{vl::tk::kExtractKeys};
    for (const ExportOptions& changing : {turned, reversed, without}) {
        LoadedScene scene = load();
        EXPECT_THROW(Export(scene, changing), std::runtime_error);
    }
    const gltf::test::TemporaryFolder folder;
    LoadedScene records = load();
    FileTransaction files;
    OutputFile& file = files.Create(folder / "out.json");
    EXPECT_THROW(ExportRecords(
                     TheHost(), records, ExportOptions(), [](double) {}, file),
                 std::runtime_error);
    EXPECT_EQ(file.Size(), 0U);
}

}  // namespace
}  // namespace zr
