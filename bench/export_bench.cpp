// SPDX-License-Identifier: MIT
// Whole exports from file to file: load, run the tools, write.
#include <benchmark/benchmark.h>

#include "app/operations/export/export_scene.h"
#include "bench/scene_file.h"

namespace {

constexpr std::size_t kFlat = 1;
constexpr std::size_t kDeep = 1000;
constexpr std::size_t kChain = std::size_t{1} << 30;

void ExportFile(benchmark::State& state, const zr::bench::SceneShape& shape, std::uint32_t exportFlags,
                std::uint32_t animFlags = 0) {
    static zr::Host host("en");
    [[maybe_unused]] static const bool hasModule = (host.LoadModule(), true);
    const zr::bench::SceneFile file(shape);
    zr::ExportOptions options;
    options.exportFlags |= exportFlags;
    options.animFlags |= animFlags;
    for (auto _ : state) {
        zr::LoadedScene loaded(zr::gltf::Document::Load(file.Path()));
        zr::ExportScene(host, std::move(loaded), options, [](double) {
        }).document.Save(file.Beside("out.glb"));
    }
    state.SetComplexityN(state.range(0));
}

void Export(benchmark::State& state, std::size_t depth, std::size_t keys, std::uint32_t flags) {
    const auto nodes = static_cast<std::size_t>(state.range(0));
    zr::bench::SceneShape shape{.nodes = nodes, .depth = depth};
    if (keys != 0)
        shape = {.nodes = nodes,
                 .animations = 1,
                 .keys = keys * nodes,
                 .depth = depth,
                 .keysPerChannel = keys / 2};
    ExportFile(state, shape, flags);
}

#define ZR_SIZES RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(Export, Flat, kFlat, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, Deep, kDeep, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, Chain, kChain, 0, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, DeepSplit, kDeep, 0, vl::tk::kGeometrySplit | vl::tk::kGroupingRoot)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, FlatWithTenKeysANode, kFlat, 10, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, DeepWithTenKeysANode, kDeep, 10, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Export, FlatWithMergedKeys, kFlat, 10, vl::tk::kMergeKeys)->ZR_SIZES;

// Ten animations of ten thousand nodes, up to ten million keys.
void MoreKeys(benchmark::State& state, std::uint32_t exportFlags, std::uint32_t animFlags) {
    zr::bench::SceneShape shape = zr::bench::SceneShape::ManyKeys();
    shape.keys = static_cast<std::size_t>(state.range(0));
    shape.keysPerChannel = shape.keys / 10000;
    ExportFile(state, shape, exportFlags, animFlags);
}

void KeySizes(benchmark::internal::Benchmark* b) {
    b->Arg(100'000)->Arg(1'000'000)->Arg(10'000'000)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(MoreKeys, AsTheyAre, 0, 0)->Apply(KeySizes);
BENCHMARK_CAPTURE(MoreKeys, Merged, vl::tk::kMergeKeys, vl::tk::kResampleKeys)->Apply(KeySizes);

}  // namespace
