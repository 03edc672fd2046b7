// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include "module/keyframe/key_merge.h"
#include "module/keyframe/key_resample.h"
#include "module/keyframe/unique_names.h"

namespace {

// Thirty keys a second along legs of about a second each.
std::vector<ExportPositionKey*> BakedTrack(std::int64_t count) {
    std::mt19937 random(3);
    std::vector<ExportPositionKey*> keys;
    float step = 0;
    float value = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        if (i % 32 == 0) step = static_cast<float>(random() % 8) / 32;
        value += step;
        keys.push_back(new ExportPositionKey());
        keys.back()->fTime = static_cast<float>(i) / 32;
        keys.back()->vValue = {value, 0, -value};
    }
    return keys;
}

void Free(std::vector<ExportPositionKey*>& keys) {
    for (ExportPositionKey* key : keys) delete key;
}

void Merge(benchmark::State& state) {
    std::size_t left = 0;
    for (auto _ : state) {
        state.PauseTiming();
        auto keys = BakedTrack(state.range(0));
        state.ResumeTiming();
        zrt::MergeKeys(keys);
        state.PauseTiming();
        left = keys.size();
        Free(keys);
        state.ResumeTiming();
    }
    state.counters["left"] = static_cast<double>(left);
    state.SetComplexityN(state.range(0));
}

void Resample(benchmark::State& state) {
    std::vector<float> times;
    for (std::int64_t i = 0; i < state.range(0); ++i) times.push_back((static_cast<float>(i) + 0.5f) / 32);
    for (auto _ : state) {
        state.PauseTiming();
        auto keys = BakedTrack(state.range(0));
        state.ResumeTiming();
        zrt::ResampleKeys(times, keys, {});
        state.PauseTiming();
        Free(keys);
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

void EqualNames(benchmark::State& state) {
    for (auto _ : state) {
        zrt::UniqueNames names(false);
        for (std::int64_t i = 0; i < state.range(0); ++i)
            benchmark::DoNotOptimize(names.Enter(u"Box", 32, 510));
    }
    state.SetComplexityN(state.range(0));
}

// The next numbers are all taken by names, and many different names need one.
void TakenNumbers(benchmark::State& state) {
    const std::int64_t count = state.range(0) / 3;
    for (auto _ : state) {
        zrt::UniqueNames names(false);
        const auto enter = [&names](std::int64_t number) {
            std::u16string name = u"x";
            for (const char digit : std::to_string(number)) name.push_back(static_cast<char16_t>(digit));
            benchmark::DoNotOptimize(names.Enter(name, 8, 510));
        };
        for (std::int64_t i = 0; i < count; ++i) enter(count + i);
        for (std::int64_t i = 0; i < count; ++i) {
            enter(1000000 + i);
            enter(1000000 + i);
        }
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK(Merge)->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(Resample)->RangeMultiplier(10)->Range(10000, 1000000)->Unit(benchmark::kMillisecond);
// Even the smallest set of names exceeds the caches, whose effect would count as growth.
BENCHMARK(EqualNames)->RangeMultiplier(2)->Range(1 << 17, 1 << 19)->Unit(benchmark::kMillisecond);
BENCHMARK(TakenNumbers)->RangeMultiplier(2)->Range(1 << 17, 1 << 19)->Unit(benchmark::kMillisecond);

}  // namespace
