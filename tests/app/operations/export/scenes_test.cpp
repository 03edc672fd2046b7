// SPDX-License-Identifier: MIT
// Documents with several scenes and nodes outside them; every node is compared by an evaluator that shares no
// code with the export.
#include <gtest/gtest.h>

#include <set>

#include "app/operations/compare/evaluator.h"
#include "app/operations/export/export_scene.h"
#include "app/operations/export/keep_scene.h"
#include "base/text.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

using compare::Affine;
using compare::Evaluator;
using compare::Vec3;
using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

// Two scenes that share node 0; levels of detail 5 (of a root), 6 (of a node with a parent) and 7 (of another
// level); a skeleton, 8 and 9, outside the scenes. Nodes of all these are animated, and so is a factor of an
// unused material.
constexpr const char* kNodes =
    R"({"name": "shared", "mesh": 0, "rotation": [0, 0.6, 0, 0.8], "children": [10]},
    {"name": "group", "translation": [5, 0, 0], "rotation": [0.6, 0, 0, 0.8], "children": [2]},
    {"name": "inner", "mesh": 0, "translation": [0, 1, 0], "extensions": {"MSFT_lod": {"ids": [6]}}},
    {"name": "top", "mesh": 0, "translation": [0, 0, 3], "extensions": {"MSFT_lod": {"ids": [5]}}},
    {"name": "skinned", "mesh": 0, "skin": 0}, {"name": "low top", "mesh": 0, "translation": [1, 2, 3]},
    {"name": "low inner", "mesh": 0, "extensions": {"MSFT_lod": {"ids": [7]}}}, {"name": "lowest inner", "mesh": 0},
    {"name": "hip", "translation": [0, 1, 0], "children": [9]}, {"name": "knee", "translation": [0, 1, 0]},
    {"name": "leaf", "translation": [1, 0, 0]})";
constexpr std::size_t kMoved[] = {0, 2, 4, 5, 6, 7, 8, 9, 10};

gltf::Document TwoScenes() {
    std::string channels;
    for (const std::size_t node : kMoved)
        channels += Join(R"({"sampler": 0, "target": {"node": )", node, R"(, "path": "translation"}},)",
                         R"({"sampler": 1, "target": {"node": )", node, R"(, "path": "rotation"}},)");
    const std::string positions = gltf::test::Floats({0, 0, 0, 1, 0, 0, 0, 1, 0});
    const std::string times = gltf::test::Floats({0.5f, 1, 2.5f});
    const std::string moves = gltf::test::Floats({0, 0, 0, 1, 2, 3, -2, 1, 0});
    const std::string turns = gltf::test::Floats({0, 0, 0, 1, 0, 0.6f, 0, 0.8f, 0.8f, 0, 0, 0.6f});
    const std::string factors = gltf::test::Floats({0, 0.25f, 1});
    const std::string bin = positions + times + moves + turns + factors;
    const std::string json = Join(
        R"({"asset": {"version": "2.0"}, "scene": 1, "scenes": [{"nodes": [0, 3, 4]}, {"name": "b", "nodes": [1, 0]}],
    "nodes": [)",
        kNodes,
        R"(], "meshes": [{"primitives": [{"attributes": {"POSITION": 0}}]}], "skins": [{"joints": [8, 9]}],
    "materials": [{}], "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.5}}],
    "animations": [{"samplers": [{"input": 1, "output": 2}, {"input": 1, "output": 3}, {"input": 1, "output": 4}],
        "channels": [)",
        channels, R"({"sampler": 2, "target": {"path": "pointer",
            "extensions": {"KHR_animation_pointer": {"pointer": "/cameras/0/perspective/znear"}}}}]}],
    "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3", "min": [0, 0, 0], "max": [1, 1, 0]},
        {"bufferView": 1, "componentType": 5126, "count": 3, "type": "SCALAR", "min": [0.5], "max": [2.5]},
        {"bufferView": 2, "componentType": 5126, "count": 3, "type": "VEC3"},
        {"bufferView": 3, "componentType": 5126, "count": 3, "type": "VEC4"},
        {"bufferView": 4, "componentType": 5126, "count": 3, "type": "SCALAR"}],
    "bufferViews": [{"buffer": 0, "byteLength": 36}, {"buffer": 0, "byteOffset": 36, "byteLength": 12},
        {"buffer": 0, "byteOffset": 48, "byteLength": 36}, {"buffer": 0, "byteOffset": 84, "byteLength": 48},
        {"buffer": 0, "byteOffset": 132, "byteLength": 12}],
    "buffers": [{"byteLength": 144}]})");
    return gltf::Document::FromBytes(BytesOf(gltf::test::Glb(json, bin)), "scenes.glb");
}

gltf::Document ExportAndLoad(gltf::Document document, const ExportOptions& options,
                             MotionReport* report = nullptr) {
    LoadedScene loaded(std::move(document), SceneOptionsOf(options, true));
    Exported exported = ExportScene(TheHost(), std::move(loaded), options, [](double) {});
    if (report != nullptr) *report = exported.report;
    const gltf::test::TemporaryFolder folder;
    exported.document.Save(folder / "out.glb");
    return gltf::Document::Load(folder / "out.glb");
}

// The node that a level of detail of TwoScenes finally stands for.
std::size_t BaseOf(std::size_t node) {
    return node == 5 ? 3 : node == 6 || node == 7 ? 2 : node;
}

// The transform with which the node is shown: a level of detail below the parent of its node. Old nodes keep
// their indices.
Affine Place(const Evaluator& evaluator, std::size_t node) {
    const std::size_t base = BaseOf(node);
    const std::size_t above = base != node ? evaluator.Parent(base) : compare::kNone;
    return above != compare::kNone ? evaluator.World(above) * evaluator.World(node) : evaluator.World(node);
}

struct SceneVariant {
    const char* name;
    std::uint32_t exportFlags = 0, animFlags = 0;
    float rescale = 1;
    double scale = 1;
    bool zUp = false;
    double speed = 1;
};

constexpr SceneVariant kSceneVariants[] = {
    {"as it is"},
    {"scaled, Z up", 0, 0, 1, 100, true},
    {"scaled, Z up, below roots", vl::tk::kGroupingRoot, 0, 1, 100, true},
    {"flipped", vl::tk::kFlipAxes, 0, 1, 2},
    {"flipped below roots", vl::tk::kFlipAxes | vl::tk::kGroupingRoot, 0, 1, 0.5},
    {"split", vl::tk::kGeometrySplit, 0, 1, 3},
    {"backwards", 0, vl::tk::kReverseTime},
    {"backwards, slower, merged", vl::tk::kMergeKeys, vl::tk::kReverseTime | vl::tk::kRescaleTime, 2},
    {"four seconds", 0, vl::tk::kSetLength, 4},
    {"twice as fast", 0, 0, 1, 10, false, 2},
};

double Mapped(const SceneVariant& variant, double time) {
    const double factor = variant.animFlags == vl::tk::kSetLength ? 2 : double{variant.rescale};
    if ((variant.animFlags & vl::tk::kReverseTime) != 0) return (2.5 - time) * factor;
    return variant.animFlags != 0 ? (time - 0.5) * factor : time / variant.speed;
}

// A transform of the source in the exported space.
Affine Exported(const SceneVariant& variant, Affine place) {
    const auto point = [&](Vec3 p) {
        p = p * variant.scale;
        if (variant.zUp) p = {p.x, -p.z, p.y};
        if ((variant.exportFlags & vl::tk::kFlipAxes) != 0) p = {p.x, p.z, p.y};
        return p;
    };
    if ((variant.exportFlags & vl::tk::kFlipAxes) != 0) std::swap(place.y, place.z);
    return {point(place.x), point(place.y), point(place.z), point(place.origin)};
}

double Distance(const Affine& a, const Affine& b) {
    return std::max({Length(a.x - b.x), Length(a.y - b.y), Length(a.z - b.z), Length(a.origin - b.origin)});
}

TEST(ExportedScenes, AllMoveTogether) {
    const gltf::Document source = TwoScenes();
    Evaluator before(source);
    for (const SceneVariant& variant : kSceneVariants) {
        SCOPED_TRACE(variant.name);
        ExportOptions options;
        options.exportFlags |= variant.exportFlags;
        options.animFlags |= variant.animFlags;
        options.rescale = variant.rescale;
        options.clip.speed = variant.speed;
        options.sceneMatrix.Scale(vl::Vector3<double>{variant.scale, variant.scale, variant.scale});
        if (variant.zUp) options.sceneMatrix.RotateX(1.5707963267948966);
        MotionReport report;
        const gltf::Document document = ExportAndLoad(TwoScenes(), options, &report);
        EXPECT_LT(report.deviation, 1e-4 * report.size);
        Evaluator after(document);
        ASSERT_EQ(after.Animations().size(), 1u);
        for (int i = 0; i <= 20; ++i) {
            const double time = 0.5 + 0.1 * i;
            before.SetTime(0, time);
            after.SetTime(0, Mapped(variant, time));
            for (std::size_t node = 0; node < 11; ++node)
                EXPECT_LT(Distance(Place(after, node), Exported(variant, Place(before, node))),
                          1e-4 * variant.scale)
                    << "node " << node << " at " << time;
            const std::string_view znear = "/cameras/0/perspective/znear";
            EXPECT_NEAR((*after.Value(znear))[0], (*before.Value(znear))[0] * variant.scale,
                        1e-4 * variant.scale);
        }
        EXPECT_NEAR(gltf::IndexMember(document.Root(), "scene"), 1, 0);
        if ((variant.exportFlags & vl::tk::kFlipAxes) == 0) continue;
        for (const Json& node : document.Elements(Kind::kNode))
            EXPECT_TRUE(node.Find("mesh") == nullptr || node.Find("matrix") != nullptr)
                << "a mesh that is not rotated";
    }
}

std::vector<std::vector<std::size_t>> RootsOf(const gltf::Document& document) {
    std::vector<std::vector<std::size_t>> all;
    for (const Json& scene : document.Elements(Kind::kScene)) {
        auto& roots = all.emplace_back();
        if (const Json* nodes = scene.Find("nodes"))
            for (const Json& node : nodes->Items()) roots.push_back(*node.Index());
    }
    return all;
}

using Roots = std::vector<std::vector<std::size_t>>;

// Nodes that scenes share have a grouping root that the scenes share.
TEST(ExportedScenes, KeepTheirRoots) {
    EXPECT_EQ(RootsOf(ExportAndLoad(TwoScenes(), ExportOptions())), (Roots{{0, 3, 4}, {1, 0}}));
    ExportOptions options;
    options.exportFlags |= vl::tk::kGroupingRoot | vl::tk::kAssignNames | vl::tk::kExportSystemCamera;
    options.nameFlags |= vl::tk::kNamesUnique;
    const gltf::Document grouped = ExportAndLoad(TwoScenes(), options);
    EXPECT_EQ(RootsOf(grouped), (Roots{{13, 14}, {11, 13}}));
    std::set<std::string_view> names;
    for (const Json& node : grouped.Elements(Kind::kNode))
        EXPECT_TRUE(names.insert(node.Find("name")->String()).second) << node.Find("name")->String();
    const auto childrenOf = [&](std::size_t node) {
        std::vector<std::size_t> children;
        for (const Json& child : grouped.Elements(Kind::kNode)[node].Find("children")->Items())
            children.push_back(*child.Index());
        return children;
    };
    EXPECT_EQ(childrenOf(11), (std::vector<std::size_t>{1, 12})) << "with the view camera";
    EXPECT_EQ(childrenOf(13), (std::vector<std::size_t>{0}));
    EXPECT_EQ(childrenOf(14), (std::vector<std::size_t>{3, 4}));
    EXPECT_EQ(childrenOf(15), (std::vector<std::size_t>{8})) << "the skeleton's own";
}

TEST(ExportedScenes, ChooseLevelsWithTheirNode) {
    ExportOptions options;
    options.nodes.only = {"top", "inner"};
    options.nodes.exclude = {"inner"};
    const gltf::Document document = ExportAndLoad(TwoScenes(), options);
    ASSERT_EQ(document.Elements(Kind::kNode).size(), 2u);
    EXPECT_EQ(document.Elements(Kind::kNode)[1].Find("name")->String(), "low top");
    EXPECT_EQ(RootsOf(document), (Roots{{0}, {}}));
}

// An empty level means that nothing is shown at that level.
TEST(ExportedScenes, KeepEmptyLevelsOfWhatStays) {
    ExportOptions options;
    options.exportFlags &= ~std::uint32_t{vl::tk::kKeepAllNodes};
    const gltf::Document document =
        ExportAndLoad(gltf::test::FromText(R"({"asset": {"version": "2.0"}, "scenes": [{"nodes": [0, 1]}],
        "nodes": [{"camera": 0, "extensions": {"MSFT_lod": {"ids": [2]}}}, {"extensions": {"MSFT_lod": {"ids": [3]}}},
                  {"children": [4]}, {}, {}],
        "cameras": [{"type": "perspective", "perspective": {"yfov": 1, "znear": 0.1}}]})"),
                      options);
    EXPECT_EQ(document.Elements(Kind::kNode).size(), 3u);
    EXPECT_EQ(RootsOf(document), (Roots{{0}}));
}

TEST(KeptScene, KeepsOnlyWhatItRefersTo) {
    gltf::Document first = TwoScenes();
    KeepScene(first, 0, false);
    std::vector<std::string_view> names;
    for (const Json& node : first.Elements(Kind::kNode)) names.push_back(node.Find("name")->String());
    EXPECT_EQ(names,
              (std::vector<std::string_view>{"shared", "top", "skinned", "low top", "hip", "knee", "leaf"}));
    EXPECT_EQ(RootsOf(first), (Roots{{0, 1, 2}}));
    EXPECT_EQ(IndexMember(first.Root(), "scene", 9), 0u);
    EXPECT_EQ(first.Elements(Kind::kSkin).size(), 1u);
    EXPECT_EQ(first.Elements(Kind::kAnimation)[0].Find("channels")->Items().size(), 13u);

    gltf::Document second = TwoScenes();
    KeepScene(second, 1, false);
    EXPECT_EQ(second.Elements(Kind::kNode).size(), 6u);
    EXPECT_EQ(second.Elements(Kind::kSkin).size(), 0u);
    EXPECT_THROW(KeepScene(second, 1, false), gltf::Error);
}

}  // namespace
}  // namespace zr
