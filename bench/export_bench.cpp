// SPDX-License-Identifier: MIT
// Whole exports from file to file: load, run the tools, write.
#include <benchmark/benchmark.h>

#include "app/operations/export/export_scene.h"
#include "bench/scene_file.h"

namespace {

constexpr std::size_t kFlat = 1;
constexpr std::size_t kDeep = 1000;
constexpr std::size_t kChain = std::size_t{1} << 30;

void ExportFile(benchmark::State& state, const zr::bench::SceneShape& shape, std::uint32_t flags) {
    static zr::Host host("en");
    [[maybe_unused]] static const bool hasModule = (host.LoadModule(), true);
    const zr::bench::SceneFile file(shape);
    zr::ExportOptions options;
    options.exportFlags |= flags;
    for (auto _ : state) {
        zr::LoadedScene loaded(zr::gltf::Document::Load(file.Path()));
        zr::ExportScene(host, loaded, options, [](double) {});
        loaded.Document().Save(file.Beside("out.glb"));
    }
    state.SetComplexityN(state.range(0));
}

void Export(benchmark::State& state, std::size_t depth, std::size_t keys, std::uint32_t flags) {
    ExportFile(state, {static_cast<std::size_t>(state.range(0)), depth, keys}, flags);
}

#define ZR_SIZES \
    RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN)

BENCHMARK_CAPTURE(Export, Flat, kFlat, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, Deep, kDeep, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, Chain, kChain, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, DeepSplit, kDeep, 0, vl::tk::kGeometrySplit | vl::tk::kGroupingRoot)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, FlatWithTenKeysANode, kFlat, 10, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, DeepWithTenKeysANode, kDeep, 10, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, FlatWithMergedKeys, kFlat, 10, vl::tk::kMergeKeys)->ZR_SIZES;

// Time in the number of keys, ten thousand nodes; a million keys at the end.
void MoreKeys(benchmark::State& state) {
    ExportFile(state, {10000, kFlat, static_cast<std::size_t>(state.range(0)) / 10000}, 0);
}
BENCHMARK(MoreKeys)
    ->Arg(100000)
    ->Arg(300000)
    ->Arg(1000000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oN);

}  // namespace
