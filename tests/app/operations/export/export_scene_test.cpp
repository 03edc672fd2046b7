// SPDX-License-Identifier: MIT
// Exports whole scenes through the module and compares all transforms at 200 times of each animation.
// ZR_TEST_SCENES may list further scenes, separated by colons.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <sstream>

#include "app/operations/export/export_scene.h"
#include "tests/app/operations/export/comparison.h"
#include "tests/app/services/the_host.h"
#include "tests/gltf/sample.h"

namespace zr {
namespace {

using test::TheHost;

using M = vl::Matrix4<double>;

constexpr int kSamples = 200;

struct Variant {
    const char* name;
    std::uint32_t exportFlags;
    std::uint32_t animFlags;
    float rescale = 1;
    double scale = 1;
    bool zUp = false;
    int pivotMode = 0;
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
    {"backwards in two seconds", vl::tk::kGeometrySplit, vl::tk::kReverseTime | vl::tk::kSetLength, 2, 0.1,
     true},
    {"merged", vl::tk::kMergeKeys, 0},
    {"resampled", 0, vl::tk::kResampleKeys},
    {"merged and resampled", vl::tk::kMergeKeys, vl::tk::kResampleKeys},
    {"flipped", vl::tk::kFlipAxes, 0},
    {"flipped and split", vl::tk::kFlipAxes | vl::tk::kGeometrySplit, 0},
    {"flipped with Z up, merged, resampled, backwards", vl::tk::kFlipAxes | vl::tk::kMergeKeys,
     vl::tk::kResampleKeys | vl::tk::kReverseTime, 1, 10, true},
    {"aims as keys", vl::tk::kCameraTargetKeys | vl::tk::kLightTargetKeys, 0},
    {"object pivots kept", 0, 0, 1, 1, false, 1},
    {"object pivots kept, flipped", vl::tk::kFlipAxes, 0, 1, 1, false, 1},
    {"group pivots kept", 0, 0, 1, 1, false, 2},
    {"group pivots kept, flipped", vl::tk::kFlipAxes, 0, 1, 1, false, 2},
};

ExportOptions OptionsOf(const Variant& variant) {
    ExportOptions options;
    options.exportFlags |= variant.exportFlags;
    options.animFlags |= variant.animFlags;
    options.pivotMode = variant.pivotMode;
    options.rescale = variant.rescale;
    options.sceneMatrix.Scale(vl::Vector3<double>{variant.scale, variant.scale, variant.scale});
    if (variant.zUp) options.sceneMatrix.RotateX(1.5707963267948966);
    return options;
}

// The time in the exported animation for a time of the scene.
double Mapped(double time, double start, double end, const Variant& variant) {
    double factor =
        variant.animFlags == 0 || variant.animFlags == vl::tk::kResampleKeys ? 1 : double{variant.rescale};
    if ((variant.animFlags & vl::tk::kSetLength) != 0)
        factor = end > start ? variant.rescale / (end - start) : 0;
    if ((variant.animFlags & vl::tk::kReverseTime) != 0) return (end - time) * factor;
    if ((variant.animFlags & (vl::tk::kRescaleTime | vl::tk::kSetLength)) != 0)
        return (time - start) * factor;
    return time;
}

double SizeOf(kernix::SceneModel& scene) {
    double size = 1;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        M world;
        node->GetWorldMatrix(&world, 0);
        for (const double value : world.m[3]) size = std::max(size, std::fabs(value));
    }
    return size;
}

// Returns the greatest difference, relative to the size of the scene.
double CheckMotion(const std::filesystem::path& file, const Variant& variant) {
    const gltf::test::TemporaryFolder folder;
    const ExportOptions options = OptionsOf(variant);
    LoadedScene before(gltf::Document::Load(file));
    {
        LoadedScene loaded(gltf::Document::Load(file));
        ExportScene(TheHost(), std::move(loaded), options, [](double) {}).document.Save(folder / "out.glb");
    }
    LoadedScene after(gltf::Document::Load(folder / "out.glb"));
    kernix::SceneModel& old = before.Scene();
    kernix::SceneModel& made = after.Scene();
    const double size = SizeOf(old) * std::max(1.0, variant.scale);
    const std::string what = file.filename().string() + ", " + variant.name;

    old.SetActiveAnimation(nullptr);
    made.SetActiveAnimation(nullptr);
    test::Comparison comparison(before, after, options);
    comparison.Run(what + ", at rest");
    EXPECT_EQ(old.m_pAnimations->m_nCount, made.m_pAnimations->m_nCount) << what;
    for (int i = 0; i < made.m_pAnimations->m_nCount && !testing::Test::HasFatalFailure(); ++i) {
        auto* oldAnimation =
            static_cast<kernix::AnimationModel*>(vl::ArrayOf<vl::zr::Animation*>(old.m_pAnimations)[i]);
        auto* madeAnimation =
            static_cast<kernix::AnimationModel*>(vl::ArrayOf<vl::zr::Animation*>(made.m_pAnimations)[i]);
        old.SetActiveAnimation(oldAnimation);
        made.SetActiveAnimation(madeAnimation);
        const double start = old.GetStartTime(oldAnimation), end = old.GetEndTime(oldAnimation);
        for (int s = 0; s < kSamples && !testing::Test::HasFatalFailure(); ++s) {
            // Avoids round times, where steps are likely.
            const double time = start + (end - start) * (s + 0.37) / kSamples;
            old.SetCurrentTime(static_cast<float>(time), 1);
            made.SetCurrentTime(static_cast<float>(Mapped(time, start, end, variant)), 1);
            comparison.Run(what + ", animation " + std::to_string(i) + " at " + std::to_string(time));
        }
    }
    EXPECT_LT(comparison.Greatest(), 1e-4 * size) << comparison.Place();
    return comparison.Greatest() / size;
}

// A rotated parent, a child with all kinds of animation, pivots, an offset and a sheared node.
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
    std::string json =
        R"({"asset":{"version":"2.0"},"extensionsUsed":["ZR_scene"],"scene":0,"scenes":[{"nodes":[0,5,8]}],
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
        json += (offset == 0 ? "" : ",") + std::string("{\"buffer\":0,\"byteOffset\":") +
                std::to_string(offset) + ",\"byteLength\":" + std::to_string(part.size()) + "}";
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
    for (const Variant& variant : kVariants)
        CheckMotion(std::filesystem::path(ZR_EXAMPLES) / "windmill.gltf", variant);
}

TEST(Export, KeepsTheMotionOfFurtherScenes) {
    const char* scenes = std::getenv("ZR_TEST_SCENES");
    if (scenes == nullptr) GTEST_SKIP() << "ZR_TEST_SCENES names no scenes";
    std::istringstream list(scenes);
    for (std::string file; std::getline(list, file, ':');) {
        for (const Variant& variant : kVariants) {
            double difference = 0;
            EXPECT_NO_THROW(difference = CheckMotion(file, variant)) << file << ", " << variant.name;
            std::printf("%s, %s: %.2g\n", file.c_str(), variant.name, difference);
        }
    }
}

TEST(Export, LeavesOutWhatTheOptionsSay) {
    const gltf::test::TemporaryFolder folder;
    LoadedScene loaded(gltf::Document::Load(std::filesystem::path(ZR_EXAMPLES) / "windmill.gltf"));
    ExportOptions options;
    options.exportFlags &= ~std::uint32_t{vl::tk::kExportLights | vl::tk::kKeepAllNodes};
    options.exportFlags |= vl::tk::kIgnoreAnimation;
    ExportScene(TheHost(), std::move(loaded), options, [](double) {}).document.Save(folder / "out.glb");
    LoadedScene after(gltf::Document::Load(folder / "out.glb"));
    const auto lights = vl::Ref<vl::Array>::Adopt(after.Scene().GetObjectsOfKind(vl::zr::kKindLight));
    EXPECT_EQ(lights->m_nCount, 0);
    EXPECT_EQ(after.Scene().m_pNodes->m_nCount, 8);
    EXPECT_EQ(after.Scene().m_pAnimations->m_nCount, 0);

    LoadedScene empty(gltf::test::FromText(R"({"asset":{"version":"2.0"},"scenes":[{}],"scene":0})"));
    EXPECT_NO_THROW(ExportScene(TheHost(), std::move(empty), ExportOptions(), [](double) {}));
    LoadedScene bare(
        gltf::test::FromText(R"({"asset":{"version":"2.0"},"nodes":[{}],"scenes":[{"nodes":[0]}]})"));
    options.exportFlags = vl::tk::kExportBones;
    EXPECT_THROW(ExportScene(TheHost(), std::move(bare), options, [](double) {}), std::runtime_error);
}

}  // namespace
}  // namespace zr
