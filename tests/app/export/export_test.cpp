// SPDX-License-Identifier: MIT
// Exports whole scenes through the module and compares where everything stands at 200 times of each animation.
// ZR_TEST_SCENES may name further scenes, separated by colons.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "app/export/export_scene.h"
#include "tests/app/gltf/sample.h"

namespace zr {
namespace {

using M = vl::Matrix4<double>;

constexpr int kSamples = 200;

Host& TheHost() {
    static Host host("en");
    static const bool loaded = (host.LoadModule(), true);
    EXPECT_TRUE(loaded);
    return host;
}

struct Variant {
    const char* name;
    std::uint32_t exportFlags;
    std::uint32_t animFlags;
    float rescale = 1;
    double scale = 1;
    bool zUp = false;
};

const Variant kVariants[] = {
    {"as it is", 0, 0},
    {"group split", vl::tk::kGroupSplit, 0},
    {"geometry split", vl::tk::kGeometrySplit, 0},
    {"root", vl::tk::kGroupingRoot, 0},
    {"scene matrix", 0, 0, 1, 100, true},
    {"scene matrix below a root, split", vl::tk::kGroupingRoot | vl::tk::kGeometrySplit, 0, 1, 0.01, true},
    {"twice as long", 0, vl::tk::kRescaleTime, 2},
    {"three seconds", 0, vl::tk::kSetLength, 3},
    {"backwards", 0, vl::tk::kReverseTime},
    {"backwards in two seconds", vl::tk::kGeometrySplit, vl::tk::kReverseTime | vl::tk::kSetLength, 2, 0.1, true},
    {"merged", vl::tk::kMergeKeys, 0},
    {"resampled", 0, vl::tk::kResampleKeys},
    {"merged and resampled", vl::tk::kMergeKeys, vl::tk::kResampleKeys},
};

ExportOptions OptionsOf(const Variant& variant) {
    ExportOptions options;
    options.exportFlags |= variant.exportFlags;
    options.animFlags |= variant.animFlags;
    options.rescale = variant.rescale;
    options.sceneMatrix.Scale(vl::Vector3<double>{variant.scale, variant.scale, variant.scale});
    if (variant.zUp) options.sceneMatrix.RotateX(1.5707963267948966);
    return options;
}

// Where the time of the scene stands in the exported animation.
double Mapped(double time, double start, double end, const Variant& variant) {
    double factor = variant.animFlags == 0 || variant.animFlags == vl::tk::kResampleKeys ? 1 : double{variant.rescale};
    if ((variant.animFlags & vl::tk::kSetLength) != 0) factor = end > start ? variant.rescale / (end - start) : 0;
    if ((variant.animFlags & vl::tk::kReverseTime) != 0) return (end - time) * factor;
    if ((variant.animFlags & (vl::tk::kRescaleTime | vl::tk::kSetLength)) != 0) return (time - start) * factor;
    return time;
}

M World(kernix::NodeModel* node) {
    M m;
    node->GetWorldMatrix(&m, 0);
    return m;
}

// Where the host shows the node's object.
M ObjectWorld(kernix::NodeModel* node) {
    const M world = World(node);
    auto* controller = static_cast<kernix::TransformControllerModel*>(node->GetController(vl::zr::kControllerTransform));
    if (controller == nullptr || (controller->m_dwFlags & vl::zr::kControllerPivotGroup) != 0) return world;
    const vl::Vector3<float>& pivot = controller->m_offset;
    M shown;
    shown.SetTranslate({-double{pivot.x}, -double{pivot.y}, -double{pivot.z}});
    shown.Transform(world);
    return shown;
}

// The node that carries the object of a node in the exported scene: itself, or a new one below it.
kernix::NodeModel* Carrier(kernix::NodeModel* node, int oldCount) {
    std::vector<kernix::NodeModel*> open = {node};
    while (!open.empty()) {
        kernix::NodeModel* model = open.back();
        open.pop_back();
        if (dynamic_cast<vl::zr::Mesh*>(model->m_pObject) != nullptr) return model;
        for (vl::zr::Node* child = model->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
            if (static_cast<kernix::NodeModel*>(child)->m_source >= oldCount) {
                open.push_back(static_cast<kernix::NodeModel*>(child));
            }
        }
    }
    return nullptr;
}

double SizeOf(kernix::SceneModel& scene) {
    double size = 1;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        for (const double value : World(static_cast<kernix::NodeModel*>(node)).m[3]) size = std::max(size, std::fabs(value));
    }
    return size;
}

void CompareAt(LoadedScene& before, LoadedScene& after, const M& sceneMatrix, double tolerance, const std::string& where) {
    const auto oldCount = static_cast<int>(before.Document().Elements(gltf::Kind::kNode).size());
    for (auto* plain : vl::ArrayOf<vl::zr::Node*>(before.Scene().m_pNodes)) {
        auto* node = static_cast<kernix::NodeModel*>(plain);
        kernix::NodeModel* exported = after.Node(static_cast<std::size_t>(node->m_source));
        ASSERT_NE(exported, nullptr) << where;
        M expected = World(node);
        expected.Transform(sceneMatrix);
        // A node that lost its object to a new one may have become that one's pivot.
        const bool hasMesh = dynamic_cast<vl::zr::Mesh*>(node->m_pObject) != nullptr;
        if (!hasMesh || dynamic_cast<vl::zr::Mesh*>(exported->m_pObject) != nullptr) {
            ASSERT_TRUE(World(exported).Equal(expected, tolerance)) << where << ", node " << node->m_source;
        }
        if (!hasMesh) continue;
        kernix::NodeModel* carrier = Carrier(exported, oldCount);
        ASSERT_NE(carrier, nullptr) << where << ", object of node " << node->m_source;
        expected = ObjectWorld(node);
        expected.Transform(sceneMatrix);
        ASSERT_TRUE(World(carrier).Equal(expected, tolerance)) << where << ", object of node " << node->m_source;
    }
}

void CheckMotion(const std::filesystem::path& file, const Variant& variant) {
    const gltf::test::TemporaryFolder folder;
    const ExportOptions options = OptionsOf(variant);
    LoadedScene before(gltf::Document::Load(file));
    {
        LoadedScene loaded(gltf::Document::Load(file));
        ExportScene(TheHost(), loaded, options, [](double) {});
        loaded.Document().Save(folder / "out.glb");
    }
    LoadedScene after(gltf::Document::Load(folder / "out.glb"));
    kernix::SceneModel& old = before.Scene();
    kernix::SceneModel& made = after.Scene();
    const double tolerance = 1e-4 * SizeOf(old) * std::max(1.0, variant.scale);
    const std::string what = file.filename().string() + ", " + variant.name;

    old.SetActiveAnimation(nullptr);
    made.SetActiveAnimation(nullptr);
    CompareAt(before, after, options.sceneMatrix, tolerance, what + ", at rest");
    ASSERT_EQ(old.m_pAnimations->m_nCount, made.m_pAnimations->m_nCount) << what;
    for (int i = 0; i < old.m_pAnimations->m_nCount && !testing::Test::HasFatalFailure(); ++i) {
        auto* oldAnimation = static_cast<kernix::AnimationModel*>(vl::ArrayOf<vl::zr::Animation*>(old.m_pAnimations)[i]);
        auto* madeAnimation = static_cast<kernix::AnimationModel*>(vl::ArrayOf<vl::zr::Animation*>(made.m_pAnimations)[i]);
        old.SetActiveAnimation(oldAnimation);
        made.SetActiveAnimation(madeAnimation);
        const double start = old.GetStartTime(oldAnimation), end = old.GetEndTime(oldAnimation);
        for (int s = 0; s < kSamples && !testing::Test::HasFatalFailure(); ++s) {
            // Between the marks of a clock, where steps are unlikely to stand.
            const double time = start + (end - start) * (s + 0.37) / kSamples;
            old.SetCurrentTime(static_cast<float>(time), 1);
            made.SetCurrentTime(static_cast<float>(Mapped(time, start, end, variant)), 1);
            CompareAt(before, after, options.sceneMatrix, tolerance,
                      what + ", animation " + std::to_string(i) + " at " + std::to_string(time));
        }
    }
}

// A parent that is turned, a child that is animated in every way, pivots, an offset and a sheared node.
std::string MotionScene() {
    using gltf::test::Floats;
    const std::string positions = Floats({0, 0, 0, 1, 0, 0, 0, 1, 0});
    const std::string times = Floats({0.5f, 1, 2, 2.5f});
    const std::string rotations = Floats({0, 0, 0, 1, 0, 0.6f, 0, 0.8f, 0.8f, 0, 0, 0.6f, 0, 0, 0.8f, 0.6f});
    const std::string moves = Floats({0, 0, 0, 3, 1, 0, -2, 4, 1, 0, 0, 5});
    const std::string scales = Floats({1, 1, 1, 2, 2, 2, 0, 0, 0, 1, 1, 1});
    std::string curve;
    for (int key = 0; key < 4; ++key) {
        const auto k = static_cast<float>(key);
        curve += Floats({1, 0, k, k, -k, 2 * k, 0, 3, -1});
    }
    const std::string bin = positions + times + rotations + moves + scales + curve;
    std::string json = R"({"asset":{"version":"2.0"},"extensionsUsed":["ZR_scene"],"scene":0,"scenes":[{"nodes":[0,5,8]}],
"nodes":[{"name":"top","rotation":[0,0.6,0,0.8],"translation":[1,2,3],"children":[1,2],"mesh":0},
{"name":"turned","translation":[0,1,0],"children":[3]},
{"name":"stepped","mesh":0},
{"name":"curved","mesh":0,"children":[4]},
{"name":"leaf","matrix":[2,0,0,0,0.5,1,0,0,0,0,1,0,4,5,6,1],"mesh":0},
{"name":"pivoted","mesh":0,"children":[6],"extensions":{"ZR_scene":{"pivot":[1,0,0]}}},
{"name":"grouped","mesh":0,"children":[7],"extensions":{"ZR_scene":{"pivot":[0,2,0],"pivotGroup":true}}},
{"name":"plain","mesh":0,"translation":[0,0,1]},{"name":"mover","mesh":0}],
"meshes":[{"primitives":[{"attributes":{"POSITION":0}}]}],
"animations":[{"name":"a","samplers":[{"input":1,"output":2},{"input":1,"output":3},{"input":1,"output":4},
{"input":1,"output":3,"interpolation":"STEP"},{"input":1,"output":5,"interpolation":"CUBICSPLINE"}],
"channels":[{"sampler":0,"target":{"node":1,"path":"rotation"}},{"sampler":2,"target":{"node":1,"path":"scale"}},
{"sampler":3,"target":{"node":2,"path":"translation"}},{"sampler":4,"target":{"node":3,"path":"translation"}},
{"sampler":0,"target":{"node":5,"path":"rotation"}},{"sampler":1,"target":{"node":8,"path":"translation"}}]},
{"name":"b","samplers":[{"input":1,"output":2},{"input":1,"output":3}],
"channels":[{"sampler":0,"target":{"node":0,"path":"rotation"}},{"sampler":1,"target":{"node":6,"path":"translation"}},
{"sampler":0,"target":{"node":6,"path":"rotation"}}]}],
"accessors":[{"bufferView":0,"componentType":5126,"count":3,"type":"VEC3","min":[0,0,0],"max":[1,1,0]},
{"bufferView":1,"componentType":5126,"count":4,"type":"SCALAR","min":[0.5],"max":[2.5]},
{"bufferView":2,"componentType":5126,"count":4,"type":"VEC4"},{"bufferView":3,"componentType":5126,"count":4,"type":"VEC3"},
{"bufferView":4,"componentType":5126,"count":4,"type":"VEC3"},{"bufferView":5,"componentType":5126,"count":12,"type":"VEC3"}],
"bufferViews":[)";
    std::size_t offset = 0;
    for (const std::string& part : {positions, times, rotations, moves, scales, curve}) {
        json += (offset == 0 ? "" : ",") + std::string("{\"buffer\":0,\"byteOffset\":") + std::to_string(offset) +
                ",\"byteLength\":" + std::to_string(part.size()) + "}";
        offset += part.size();
    }
    json += "],\"buffers\":[{\"byteLength\":" + std::to_string(bin.size()) + "}]}";
    return gltf::test::Glb(json, bin);
}

TEST(Export, KeepsTheMotionOfAScene) {
    const gltf::test::TemporaryFolder folder;
    folder.Write("motion.glb", MotionScene());
    for (const Variant& variant : kVariants) CheckMotion(folder / "motion.glb", variant);
}

TEST(Export, KeepsTheMotionOfTheExamples) {
    for (const Variant& variant : kVariants) CheckMotion(std::filesystem::path(ZR_EXAMPLES) / "windmill.gltf", variant);
}

TEST(Export, KeepsTheMotionOfFurtherScenes) {
    const char* scenes = std::getenv("ZR_TEST_SCENES");
    if (scenes == nullptr) GTEST_SKIP() << "ZR_TEST_SCENES names no scenes";
    std::istringstream list(scenes);
    for (std::string file; std::getline(list, file, ':');) {
        for (const Variant& variant : kVariants) {
            EXPECT_NO_THROW(CheckMotion(file, variant)) << file << ", " << variant.name;
        }
    }
}

TEST(Export, LeavesOutWhatTheOptionsSay) {
    const gltf::test::TemporaryFolder folder;
    LoadedScene loaded(gltf::Document::Load(std::filesystem::path(ZR_EXAMPLES) / "windmill.gltf"));
    ExportOptions options;
    options.exportFlags &= ~std::uint32_t{vl::tk::kExportLights | vl::tk::kKeepAllNodes};
    options.exportFlags |= vl::tk::kIgnoreAnimation;
    ExportScene(TheHost(), loaded, options, [](double) {});
    loaded.Document().Save(folder / "out.glb");
    LoadedScene after(gltf::Document::Load(folder / "out.glb"));
    const auto lights = vl::Ref<vl::Array>::Adopt(after.Scene().GetObjectsOfKind(vl::zr::kKindLight));
    EXPECT_EQ(lights->m_nCount, 0);
    EXPECT_EQ(after.Scene().m_pNodes->m_nCount, 8);
    EXPECT_EQ(after.Scene().m_pAnimations->m_nCount, 0);

    LoadedScene empty(gltf::test::FromText(R"({"asset":{"version":"2.0"},"scenes":[{}],"scene":0})"));
    EXPECT_NO_THROW(ExportScene(TheHost(), empty, ExportOptions(), [](double) {}));
    LoadedScene bare(gltf::test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{}],"scenes":[{"nodes":[0]}]})"));
    options.exportFlags = vl::tk::kExportBones;
    EXPECT_THROW(ExportScene(TheHost(), bare, options, [](double) {}), std::runtime_error);
}

}  // namespace
}  // namespace zr
