// SPDX-License-Identifier: MIT
// Bakes a cubic curve into linear keys and writes these into a document. "a key" is the time for each
// resulting key.
#include <benchmark/benchmark.h>

#include <cmath>
#include <string>

#include "app/scene/curves.h"
#include "kernix/scene/scene_model.h"

namespace {

// Waves of eight keys, one a second: value(phase) writes a key's slope and value.
template <typename Value>
kernix::Curve Waves(std::int64_t count, std::size_t width, Value value) {
    constexpr float kPerSecond = 8;
    kernix::Curve curve{vl::zr::kInterpolationCubic, {}, {}};
    for (std::int64_t i = 0; i < count; ++i) {
        float slope[4] = {}, shown[4] = {};
        curve.times.push_back(static_cast<float>(i) / kPerSecond);
        value(curve.times.back(), static_cast<float>(i % 8) * 0.785398F, slope, shown);
        for (const float* part : {slope, shown, slope})
            curve.values.insert(curve.values.end(), part, part + width);
    }
    return curve;
}

// A node that goes up and down on its way, with the slopes of the wave.
kernix::Curve Moves(std::int64_t count) {
    return Waves(count, 3, [](float time, float phase, float* slope, float* value) {
        slope[1] = 6.283185F * std::cos(phase);
        value[0] = time / 1024;
        value[1] = std::sin(phase);
    });
}

// A node that swings by a radian to either side.
kernix::Curve Turns(std::int64_t count) {
    return Waves(count, 4, [](float, float phase, float* slope, float* value) {
        const float half = std::sin(phase) / 2, speed = 3.141593F * std::cos(phase);
        value[1] = std::sin(half);
        value[3] = std::cos(half);
        slope[1] = speed * value[3];
        slope[3] = -speed * value[1];
    });
}

void BakeAndWrite(benchmark::State& state, int keyType, kernix::Curve (*make)(std::int64_t)) {
    const auto scene = vl::Ref<kernix::SceneModel>::Adopt(new kernix::SceneModel);
    kernix::TransformTrack* track = scene->AddNode(nullptr, "node")
                                        ->AddTransformController()
                                        ->AddTransformTrack(scene->AddAnimation(u"move"));
    track->SetCurve(keyType, kernix::StoredCurve(make(state.range(0))));
    const std::string text = R"({"asset":{"version":"2.0"},"animations":[{}]})";
    std::size_t keys = 0;
    for (auto _ : state) {
        auto document = zr::gltf::Document::FromBytes(std::as_bytes(std::span(text)), "scene.gltf");
        const kernix::Curve baked = zr::BakedKeys(*track, keyType);
        zr::CurveWriter(document).Append(0, baked, zr::WidthOf(keyType) == 4 ? "VEC4" : "VEC3");
        keys = baked.times.size();
    }
    using benchmark::Counter;
    state.counters["keys"] = static_cast<double>(keys);
    state.counters["a key"] =
        Counter(static_cast<double>(keys), Counter::kIsIterationInvariantRate | Counter::kInvert);
    state.SetComplexityN(static_cast<std::int64_t>(keys));
}

// From a hundred thousand keys on, which no cache holds, to about a million.
void Sizes(benchmark::internal::Benchmark* b) {
    b->RangeMultiplier(2)->Range(1 << 11, 1 << 14)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(BakeAndWrite, Moves, vl::zr::kKeyPosition, Moves)->Apply(Sizes);
BENCHMARK_CAPTURE(BakeAndWrite, Turns, vl::zr::kKeyRotation, Turns)->Apply(Sizes);

}  // namespace
