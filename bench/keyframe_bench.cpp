// SPDX-License-Identifier: MIT
// The keyframe tools on scenes of growing size and of several shapes.
#include <benchmark/benchmark.h>

#include <memory>

#include "kernix/host_app_base.h"
#include "kernix/scene/plain_objects.h"
#include "kernix/scene/scene_model.h"
#include "module/frame/globals.h"
#include "module/keyframe/keyframe_tool.h"

namespace {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;
using namespace vl::tk;

constexpr int kFlat = 1;
constexpr int kDeep = 1000;
constexpr int kChain = 1 << 30;
constexpr int kKeys = 10;  // on each animated node

class Host final : public kernix::HostAppBase {};

// Meshes in chains of the given depth.
Ref<SceneModel> MakeScene(int count, int depth, bool isAnimated) {
    auto scene = Ref<SceneModel>::Adopt(new SceneModel);
    auto geometry = std::make_shared<kernix::MeshGeometry>();
    geometry->positions = std::make_shared<kernix::Positions>(9, 0.0f);
    geometry->faces = kernix::MakeFaces({0, 1, 2});
    auto* animation = isAnimated ? scene->AddAnimation(u"move") : nullptr;
    NodeModel* parent = nullptr;
    for (int i = 0; i < count; ++i) {
        NodeModel* node = scene->AddNode(i % depth == 0 ? nullptr : parent, "node");
        parent = node;
        node->SetObject(Ref<vl::zr::Object3D>::Adopt(new kernix::MeshModel(geometry, nullptr, nullptr, 0)));
        node->SetRestPose({{1, 0, 0}, vl::Quaternion(vl::AngleAxis(0, 0, 1, 0.001f)), {1, 1, 1}});
        if (!isAnimated) continue;
        auto* track = node->AddTransformController()->AddTransformTrack(animation);
        for (int key = 0; key < kKeys; ++key) {
            const auto time = static_cast<float>(key);
            track->AddRotation(time)->SetQuaternion(vl::Quaternion(vl::AngleAxis(0, 1, 0, time)));
        }
    }
    return scene;
}

void Run(benchmark::State& state, int depth, bool isAnimated, std::uint32_t exportFlags,
         std::uint32_t animFlags) {
    Host host;
    g_pHost = &host;
    const auto scene = MakeScene(static_cast<int>(state.range(0)), depth, isAnimated);
    for (auto _ : state) {
        const auto tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        tool->m_pScene = scene.Get();
        tool->m_dwExportFlags = exportFlags;
        tool->m_dwAnimFlags = animFlags;
        if (tool->Process(0) == 0) state.SkipWithError("nothing was built");
    }
    state.SetComplexityN(state.range(0));
    g_pHost = nullptr;
}

// Even the smallest scene exceeds the caches, whose effect would count as growth.
#define ZR_SIZES \
    Arg(50000)->Arg(100000)->Arg(200000)->Arg(400000)->Iterations(1)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(Run, BuildFlat, kFlat, false, kDecomposeRest | kGroupingRoot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, BuildDeep, kDeep, false, kDecomposeRest | kGroupingRoot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, BuildChain, kChain, false, kDecomposeRest | kGroupingRoot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, SplitFlat, kFlat, false, kGeometrySplit | kStaticPivot | kGroupingRoot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, SplitDeep, kDeep, false, kGeometrySplit | kStaticPivot | kGroupingRoot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, SplitChain, kChain, false, kGeometrySplit | kStaticPivot, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, KeysFlat, kFlat, true, kExtractKeys, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, KeysDeep, kDeep, true, kExtractKeys, kAngleAxisKeys)->ZR_SIZES;
BENCHMARK_CAPTURE(Run, KeysChainReversed, kChain, true, kExtractKeys, kAngleAxisKeys | kReverseTime)
    ->ZR_SIZES;

// Time against the number of keys of one node.
void RunKeys(benchmark::State& state, std::uint32_t animFlags) {
    Host host;
    g_pHost = &host;
    const auto scene = Ref<SceneModel>::Adopt(new SceneModel);
    auto* track = scene->AddNode(nullptr, "node")
                      ->AddTransformController()
                      ->AddTransformTrack(scene->AddAnimation(u"move"));
    for (int i = 0; i < state.range(0); ++i) {
        track->AddRotation(static_cast<float>(i))->SetValue({0, 1, 0, 4});  // two keys are inserted between
    }
    for (auto _ : state) {
        const auto tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        tool->m_pScene = scene.Get();
        tool->m_dwExportFlags = kExtractKeys | kKeepAllNodes;
        tool->m_dwAnimFlags = animFlags;
        tool->Process(0);
        auto* record = vl::ArrayOf<ExportNode*>(tool->m_pAllNodes)[0];
        const auto times = Ref<vl::Array>::Adopt(tool->GetKeyTimes(record, 1));
        benchmark::DoNotOptimize(times->m_nCount);
    }
    state.SetComplexityN(state.range(0));
    g_pHost = nullptr;
}

BENCHMARK_CAPTURE(RunKeys, SplitSteps, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(RunKeys, SplitStepsReversed, kReverseTime)->ZR_SIZES;

// Cameras or lights in chains of the given depth, each with a target of its own that passes by.
template <typename Object>
Ref<SceneModel> MakeAims(int count, int depth, auto makeObject) {
    auto scene = Ref<SceneModel>::Adopt(new SceneModel);
    auto* animation = scene->AddAnimation(u"move");
    NodeModel* parent = nullptr;
    for (int i = 0; i < count; ++i) {
        NodeModel* target = scene->AddNode(nullptr, "target");
        auto* track = target->AddTransformController()->AddTransformTrack(animation);
        for (int key = 0; key < 3; ++key) {
            const float step = static_cast<float>((i + key) % 7);
            track->AddPosition(static_cast<float>(key))->m_value = {step - 3, step / 4, -6 - step};
        }
        NodeModel* node = scene->AddNode(i % depth == 0 ? nullptr : parent, "node");
        parent = node;
        Object* object = makeObject();
        node->SetObject(Ref<vl::zr::Object3D>::Adopt(object));
        node->SetRestPose({{0.001f, 0, 0}, {}, {1, 1, 1}});
        object->SetTarget(target);
    }
    return scene;
}

void RunAims(benchmark::State& state, bool isLight, int depth) {
    Host host;
    g_pHost = &host;
    const auto count = static_cast<int>(state.range(0));
    const auto scene =
        isLight ? MakeAims<kernix::LightModel>(count, depth,
                                               [] { return new kernix::LightModel(vl::zr::kLightSpot); })
                : MakeAims<kernix::CameraModel>(count, depth, [] { return new kernix::CameraModel; });
    for (auto _ : state) {
        const auto tool = Ref<ZR_TK>::Adopt(new ZR_TK);
        tool->m_pScene = scene.Get();
        tool->m_dwExportFlags =
            kExtractKeys | kExportCameras | kExportLights | kAllChoices | kKeepAllNodes | kGroupSplit;
        tool->Process(0);
    }
    state.SetComplexityN(state.range(0));
    g_pHost = nullptr;
}

// Sizes that exceed the caches.
#define ZR_AIMS RangeMultiplier(4)->Range(2048, 32768)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(RunAims, Lights, true, kFlat)->ZR_AIMS;
BENCHMARK_CAPTURE(RunAims, Cameras, false, kFlat)->ZR_AIMS;
BENCHMARK_CAPTURE(RunAims, CamerasInAChain, false, kChain)->ZR_AIMS;

}  // namespace
