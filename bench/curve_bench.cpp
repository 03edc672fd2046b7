// SPDX-License-Identifier: MIT
// Bakes a cubic curve into linear keys and writes these into a document. "a key" is the time for each
// resulting key.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "app/scene/curves.h"
#include "kernix/scene/scene_model.h"

namespace {

// A node that moves up and down, one wave of eight keys each second, with the slopes of the wave.
kernix::Curve Waves(std::int64_t count) {
    constexpr float kPerSecond = 8;
    kernix::Curve curve{vl::zr::kInterpolationCubic, {}, {}};
    for (std::int64_t i = 0; i < count; ++i) {
        const float time = static_cast<float>(i) / kPerSecond;
        const float phase = static_cast<float>(i % 8) * 0.785398F;
        const float slope = 6.283185F * std::cos(phase);
        curve.times.push_back(time);
        curve.values.insert(curve.values.end(), {0, slope, 0, time / 1024, std::sin(phase), 0, 0, slope, 0});
    }
    return curve;
}

void BakeAndWrite(benchmark::State& state) {
    const auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    kernix::TransformTrack* track = scene->AddNode(nullptr, "node")
                                        ->AddTransformController()
                                        ->AddTransformTrack(scene->AddAnimation(u"move"));
    track->SetCurve(vl::zr::kKeyPosition, kernix::StoredCurve(Waves(state.range(0))));
    const std::string text = R"({"asset":{"version":"2.0"},"animations":[{}]})";
    std::size_t keys = 0;
    for (auto _ : state) {
        auto document = zr::gltf::Document::FromBytes(std::as_bytes(std::span(text)), "scene.gltf");
        const kernix::Curve baked = zr::BakedKeys(*track, vl::zr::kKeyPosition);
        zr::CurveWriter(document).Append(0, baked, "VEC3");
        keys = baked.times.size();
    }
    using benchmark::Counter;
    state.counters["keys"] = static_cast<double>(keys);
    state.counters["a key"] =
        Counter(static_cast<double>(keys), Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.SetComplexityN(state.range(0));
}

BENCHMARK(BakeAndWrite)->RangeMultiplier(4)->Range(1 << 11, 1 << 15)->Unit(benchmark::kMillisecond);

}  // namespace
