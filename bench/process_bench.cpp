// SPDX-License-Identifier: MIT
// The program itself on files of growing size: the CPU time of a process, and its peak memory relative to the
// size of the file. Merely reading and writing the file is the floor.
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <vector>

#include "bench/scene_file.h"
#include "gltf/document.h"

namespace {

using zr::bench::SceneFile;
using zr::bench::SceneShape;

double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
}

// Does the work in a separate process, whose CPU time counts as the time of the iteration.
template <typename Work>
void Measure(benchmark::State& state, const SceneFile& file, Work work) {
    double peak = 0;
    for (auto _ : state) {
        const pid_t child = fork();
        if (child == 0) {
            work();
            _exit(0);
        }
        int status = 0;
        rusage used{};
        wait4(child, &status, 0, &used);
        if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) state.SkipWithError("the run failed");
        state.SetIterationTime(Seconds(used.ru_utime) + Seconds(used.ru_stime));
        peak = static_cast<double>(used.ru_maxrss) * 1024;
    }
    const auto size = static_cast<double>(std::filesystem::file_size(file.Path()));
    state.counters["file MB"] = size / 1e6;
    state.counters["peak MB"] = peak / 1e6;
    state.counters["peak/file"] = peak / size;
    state.SetComplexityN(state.range(0));
}

void Program(benchmark::State& state, const SceneShape& shape, std::vector<const char*> arguments) {
    const SceneFile file(shape);
    const std::string in = file.Path(), out = file.Beside("out.glb");
    arguments.insert(arguments.begin(), "zr");
    for (const char*& argument : arguments) {
        if (argument == std::string_view("IN")) argument = in.c_str();
        if (argument == std::string_view("OUT")) argument = out.c_str();
    }
    arguments.push_back(nullptr);
    Measure(state, file, [&] {
        if (std::freopen("/dev/null", "w", stdout) != nullptr)
            execv(ZR_PROGRAM, const_cast<char* const*>(arguments.data()));
        _exit(1);
    });
}

// A hundredth, a tenth and the whole of a million nodes.
SceneShape Nodes(const benchmark::State& state) {
    const auto nodes = static_cast<std::size_t>(state.range(0));
    SceneShape shape = SceneShape::Large();
    shape.nodes = nodes;
    shape.repeats = nodes / 10;
    shape.keys = nodes * 10;
    return shape;
}

void Floor(benchmark::State& state) {
    const SceneFile file(Nodes(state));
    Measure(state, file, [&] { zr::gltf::Document::Load(file.Path()).Save(file.Beside("out.glb")); });
}

void Clean(benchmark::State& state) {
    Program(state, Nodes(state), {"clean", "--all", "IN", "OUT"});
}
void Export(benchmark::State& state) {
    Program(state, Nodes(state), {"export", "--merge-keys", "--resample", "IN", "OUT"});
}
void Merge(benchmark::State& state) {
    Program(state, Nodes(state),
            {"merge", "IN", "OUT", "--animations", "move 0,move 1,move 2", "--sequence"});
}
void Split(benchmark::State& state) {
    Program(state, Nodes(state), {"split", "IN", "OUT", "--animation", "move 0", "--at", "1,2"});
}
void Info(benchmark::State& state) {
    Program(state, Nodes(state), {"info", "IN"});
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10'000)
        ->Arg(100'000)
        ->Arg(1'000'000)
        ->Iterations(1)
        ->Unit(benchmark::kMillisecond)
        ->UseManualTime();
}

BENCHMARK(Floor)->Apply(Sizes);
BENCHMARK(Clean)->Apply(Sizes);
BENCHMARK(Export)->Apply(Sizes);
BENCHMARK(Merge)->Apply(Sizes);
BENCHMARK(Split)->Apply(Sizes);
BENCHMARK(Info)->Apply(Sizes);

// A chain should cost no more than flat nodes.
void Chain(benchmark::State& state) {
    const auto nodes = static_cast<std::size_t>(state.range(0));
    Program(state,
            {.nodes = nodes, .animations = 1, .keys = nodes * 10, .depth = nodes, .keysPerChannel = 10},
            {"export", "--merge-keys", "IN", "OUT"});
}
BENCHMARK(Chain)
    ->Arg(2'000)
    ->Arg(20'000)
    ->Arg(200'000)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseManualTime();

}  // namespace
