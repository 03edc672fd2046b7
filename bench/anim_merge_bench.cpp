// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "kernix/array.h"
#include "kernix/host_app_base.h"
#include "kernix/scene/scene_model.h"
#include "module/animmanager/anim_manager_impl.h"
#include "module/frame/globals.h"

namespace {

constexpr int kKeysPerTrack = 10;

// Nodes that every animation moves in all three ways.
void Fill(kernix::SceneModel& scene, std::int64_t nodes, std::int64_t animations, float secondsApart) {
    for (std::int64_t a = 0; a < animations; ++a) scene.AddAnimation(u"source");
    for (std::int64_t n = 0; n < nodes; ++n) {
        kernix::TransformControllerModel* controller =
            scene.AddNode(nullptr, "node")->AddTransformController();
        for (std::int64_t a = 0; a < animations; ++a) {
            kernix::TransformTrack* track =
                controller->AddTransformTrack(scene.AllAnimations()[static_cast<std::size_t>(a)].Get());
            for (int k = 0; k < kKeysPerTrack; ++k) {
                const float time = static_cast<float>(a) * secondsApart + static_cast<float>(k) / 30;
                track->AddPosition(time)->SetValue({time, 1, 2});
                track->AddScale(time)->SetValue({1, time + 1, 1});
                track->AddRotation(time)->SetQuaternion(vl::Quaternion(vl::AngleAxis(0, 0.6f, 0.8f, time)));
            }
        }
    }
}

void Merge(benchmark::State& state, std::int64_t nodes, std::int64_t animations, float secondsApart) {
    kernix::HostAppBase host;
    g_pHost = &host;
    const auto manager = vl::Ref<zr_ANIM_MANAGER>::Adopt(static_cast<zr_ANIM_MANAGER*>(CreateAnimManager()));
    for (auto _ : state) {
        state.PauseTiming();
        {
            const auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
            Fill(*scene, nodes, animations, secondsApart);
            state.ResumeTiming();
            manager->MergeAnimations(nullptr, scene->m_pAnimations, true,
                                     ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
    state.SetComplexityN(nodes * animations * kKeysPerTrack * 3);
    g_pHost = nullptr;
}

void MoreNodes(benchmark::State& state) {
    Merge(state, state.range(0), 20, 1);
}
void MoreAnimations(benchmark::State& state) {
    Merge(state, 100, state.range(0), 1);
}
void MoreAnimationsAtOneTime(benchmark::State& state) {
    Merge(state, 100, state.range(0), 0.0001f);
}
void HundredOnAThousandNodes(benchmark::State& state) {
    Merge(state, 1000, 100, 1);
}

BENCHMARK(MoreNodes)->RangeMultiplier(4)->Range(16, 4096)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(MoreAnimations)->RangeMultiplier(4)->Range(8, 512)->Unit(benchmark::kMillisecond)->Complexity();
BENCHMARK(MoreAnimationsAtOneTime)
    ->RangeMultiplier(4)
    ->Range(8, 512)
    ->Unit(benchmark::kMillisecond)
    ->Complexity();
BENCHMARK(HundredOnAThousandNodes)->Unit(benchmark::kMillisecond);

}  // namespace
