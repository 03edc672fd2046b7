// SPDX-License-Identifier: MIT
#include <benchmark/benchmark.h>

#include <vector>

#include "kernix/host_app_base.h"
#include "kernix/scene/scene_model.h"
#include "module/cleaner/cleaner.h"
#include "module/frame/globals.h"
#include "tests/module/cleaner/scenes.h"

using kernix::SceneModel;

namespace {

using Operation = int (CCleanerImpl::*)(vl::zr::Scene*, vl::Context*, ChangeRecord*);

// Half of the nodes show a mesh of a tenth as many materials, each mesh twice at its place; the others are
// empty. deep: a chain; else all at the top.
vl::Ref<SceneModel> MakeScene(int nodes, bool deep) {
    auto scene = vl::Ref<SceneModel>::Adopt(new SceneModel);
    std::vector<kernix::MaterialModel*> materials;
    for (int i = 0; i < nodes / 10; ++i) materials.push_back(scene->AddMaterial("material", "content"));
    kernix::NodeModel* parent = nullptr;
    for (int i = 0; i < nodes / 2; ++i) parent = scene->AddNode(deep ? parent : nullptr, "empty");
    for (int i = 0; i < nodes / 2; ++i) {
        const int shape = i / 2;
        kernix::MaterialModel* material = materials[static_cast<std::size_t>(shape) % materials.size()];
        scene->AddNode(nullptr, "mesh")
            ->SetObject(cleaner_test::MakeMesh(material, static_cast<float>(shape)));
    }
    return scene;
}

void Run(benchmark::State& state, Operation operation, bool deep, int expected) {
    kernix::HostAppBase host;
    g_pHost = &host;
    const auto nodes = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto scene = MakeScene(nodes, deep);
        const auto cleaner = vl::Ref<CCleanerImpl>::Adopt(CreateCleaner());
        state.ResumeTiming();
        const int count = ((*cleaner).*operation)(scene.Get(), nullptr, nullptr);
        state.PauseTiming();
        if (count != nodes / expected) state.SkipWithError("another number of removals than expected");
        scene.Reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(nodes);
    g_pHost = nullptr;
}

void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(10000)->Arg(20000)->Arg(40000)->Arg(100000)->Iterations(5)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Run, MeshDupes, &CCleanerImpl::RemoveMeshDupes, false, 4)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, EmptyNodesFlat, &CCleanerImpl::RemoveEmptyNodes, false, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, EmptyNodesDeep, &CCleanerImpl::RemoveEmptyNodes, true, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, UsedMaterials, &CCleanerImpl::RemoveUnusedMaterials, false, 1 << 30)->Apply(Sizes);

}  // namespace
