// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <cstdint>

#include "kernix/array.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/scene_model.h"
#include "module/animmanager/anim_manager_impl.h"
#include "module/frame/globals.h"

namespace {

constexpr int kKeysPerTrack = 10;

struct Size {
    std::int64_t nodes;
    std::int64_t animations;
    float secondsApart;
};

// Nodes that every animation moves in all three ways.
void Fill(kernix::SceneModel& scene, const Size& size) {
    for (std::int64_t a = 0; a < size.animations; ++a) scene.AddAnimation(u"source");
    for (std::int64_t n = 0; n < size.nodes; ++n) {
        kernix::TransformControllerModel* controller =
            scene.AddNode(nullptr, "node")->AddTransformController();
        for (std::int64_t a = 0; a < size.animations; ++a) {
            kernix::TransformTrack* track =
                controller->AddTransformTrack(scene.AllAnimations()[static_cast<std::size_t>(a)].Get());
            for (int k = 0; k < kKeysPerTrack; ++k) {
                const float time = static_cast<float>(a) * size.secondsApart + static_cast<float>(k) / 30;
                track->AddPosition(time)->SetValue({time, 1, 2});
                track->AddScale(time)->SetValue({1, time + 1, 1});
                track->AddRotation(time)->SetQuaternion(vl::Quaternion(vl::AngleAxis(0, 0.6f, 0.8f, time)));
            }
        }
    }
}

constexpr std::uint32_t kAllKeys = ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE;

void Merge(benchmark::State& state, const Size& size) {
    // A first pass faults in the pages of the heap: a page fault costs more than a key.
    kernix::HostAppBase host;
    g_pHost = &host;
    const auto manager = vl::Ref<zr_ANIM_MANAGER>::Adopt(new CAnimManagerImpl);
    const auto makeScene = [&size] {
        auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
        Fill(*scene, size);
        return scene;
    };
    manager->MergeAnimations(nullptr, makeScene()->m_pAnimations, true, kAllKeys);
    for (auto _ : state) {
        state.PauseTiming();
        auto scene = makeScene();
        state.ResumeTiming();
        manager->MergeAnimations(nullptr, scene->m_pAnimations, true, kAllKeys);
        state.PauseTiming();
        scene.Reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(size.nodes * size.animations * kKeysPerTrack * 3);
    g_pHost = nullptr;
}

void MoreNodes(benchmark::State& state) {
    Merge(state, {state.range(0), 20, 1});
}
void MoreAnimations(benchmark::State& state) {
    Merge(state, {100, state.range(0), 1});
}
void MoreAnimationsAtOneTime(benchmark::State& state) {
    Merge(state, {100, state.range(0), 0.0001f});
}
void HundredOnAThousandNodes(benchmark::State& state) {
    Merge(state, {1000, 100, 1});
}

BENCHMARK(MoreNodes)->RangeMultiplier(4)->Range(16, 1024)->Unit(benchmark::kMillisecond);
BENCHMARK(MoreAnimations)->RangeMultiplier(4)->Range(8, 256)->Unit(benchmark::kMillisecond);
BENCHMARK(MoreAnimationsAtOneTime)->RangeMultiplier(4)->Range(8, 256)->Unit(benchmark::kMillisecond);
BENCHMARK(HundredOnAThousandNodes)->Unit(benchmark::kMillisecond);

}  // namespace
