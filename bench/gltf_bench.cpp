// SPDX-License-Identifier: MIT
// Reads glTF files of growing size: the text alone, the checked document, the scene built from it.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include "app/scene/loaded_scene.h"
#include "bench/scene_file.h"
#include "gltf/document.h"
#include "gltf/glb.h"

namespace {

using zr::bench::SceneFile;
using zr::bench::SceneShape;

constexpr std::size_t kFlat = 1;
constexpr std::size_t kDeep = 1000;
constexpr std::size_t kChain = std::size_t{1} << 30;

SceneShape ShapeOf(const benchmark::State& state, std::size_t depth, std::size_t keys) {
    const auto nodes = static_cast<std::size_t>(state.range(0));
    if (keys == 0) return {.nodes = nodes, .depth = depth};
    return {
        .nodes = nodes, .animations = 1, .keys = keys * nodes, .depth = depth, .keysPerChannel = keys / 2};
}

double MebibytesInUse() {
    const auto heap = mallinfo2();
    return static_cast<double>(heap.uordblks + heap.hblkhd) / (1 << 20);
}

// MiB is the size of the text.
void Parse(benchmark::State& state, std::size_t keys) {
    const SceneFile file(ShapeOf(state, kFlat, keys));
    const zr::FileContent content = zr::ReadFile(file.Path());
    const zr::gltf::GlbLayout layout = zr::gltf::ReadGlbLayout(content.View(), "scene.glb");
    const std::string_view json(reinterpret_cast<const char*>(content.data.get()) + layout.jsonOffset,
                                layout.jsonSize);
    for (auto _ : state) {
        state.PauseTiming();
        std::string text(json);
        state.ResumeTiming();
        zr::gltf::JsonTree tree;
        tree.Parse(text.data(), text.size(), "scene.glb");
        benchmark::DoNotOptimize(tree.root);
    }
    state.SetComplexityN(state.range(0));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(json.size()));
    state.counters["MiB"] = static_cast<double>(json.size()) / (1 << 20);
}

void LoadDocument(benchmark::State& state, std::size_t depth, std::size_t keys) {
    const SceneFile file(ShapeOf(state, depth, keys));
    for (auto _ : state) benchmark::DoNotOptimize(zr::gltf::Document::Load(file.Path()));
    state.SetComplexityN(state.range(0));
}

// MiB is the memory of the document and its scene.
void LoadScene(benchmark::State& state, std::size_t depth, std::size_t keys) {
    const SceneFile file(ShapeOf(state, depth, keys));
    const double before = MebibytesInUse();
    for (auto _ : state) {
        const zr::LoadedScene loaded(zr::gltf::Document::Load(file.Path()));
        state.PauseTiming();
        state.counters["MiB"] = MebibytesInUse() - before;
        state.ResumeTiming();
    }
    state.SetComplexityN(state.range(0));
}

#define ZR_SIZES RangeMultiplier(10)->Range(1000, 100000)->Unit(benchmark::kMillisecond)

BENCHMARK_CAPTURE(Parse, Nodes, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(Parse, NodesAndChannels, 10)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadDocument, Flat, kFlat, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadDocument, FlatWithTenKeysANode, kFlat, 10)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadScene, Flat, kFlat, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadScene, Deep, kDeep, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadScene, Chain, kChain, 0)->ZR_SIZES;
BENCHMARK_CAPTURE(LoadScene, FlatWithTenKeysANode, kFlat, 10)->ZR_SIZES;

}  // namespace
