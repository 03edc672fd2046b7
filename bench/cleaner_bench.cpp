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

// Half of the nodes show meshes, each twice at its place, with a tenth as many materials as nodes; the others
// are empty. deep: the empty nodes form a chain; otherwise all are roots.
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

vl::Ref<SceneModel> MakeFlat(int nodes) {
    return MakeScene(nodes, false);
}
vl::Ref<SceneModel> MakeDeep(int nodes) {
    return MakeScene(nodes, true);
}

// Equal meshes close together, but too far apart to be duplicates.
vl::Ref<SceneModel> MakeCrowd(int nodes) {
    auto scene = vl::Ref<SceneModel>::Adopt(new SceneModel);
    kernix::MaterialModel* material = scene->AddMaterial("material", "content");
    for (int i = 0; i < nodes; ++i) {
        kernix::NodeModel* node = scene->AddNode(nullptr, "mesh");
        node->SetObject(cleaner_test::MakeMesh(material, 0));
        node->SetRestPose({{static_cast<float>(i) * 1e-5F, 0, 0}, {}, {1, 1, 1}});
    }
    return scene;
}

void Run(benchmark::State& state, Operation operation, vl::Ref<SceneModel> (*make)(int), int expected) {
    kernix::HostAppBase host;
    g_pHost = &host;
    const auto nodes = static_cast<int>(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto scene = make(nodes);
        const auto cleaner = vl::Ref<CCleanerImpl>::Adopt(CreateCleaner());
        state.ResumeTiming();
        const int count = ((*cleaner).*operation)(scene.Get(), nullptr, nullptr);
        state.PauseTiming();
        if (count != nodes / expected) state.SkipWithError("unexpected number of removals");
        scene.Reset();
        state.ResumeTiming();
    }
    state.SetComplexityN(nodes);
    g_pHost = nullptr;
}

// Even the smallest scene exceeds the caches, whose effect would count as growth.
void Sizes(benchmark::internal::Benchmark* b) {
    b->Arg(50000)->Arg(100000)->Arg(200000)->Arg(400000)->Iterations(1)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Run, MeshDupes, &CCleanerImpl::RemoveMeshDupes, MakeFlat, 4)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, CrowdedMeshes, &CCleanerImpl::RemoveMeshDupes, MakeCrowd, 1 << 30)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, EmptyNodesFlat, &CCleanerImpl::RemoveEmptyNodes, MakeFlat, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, EmptyNodesDeep, &CCleanerImpl::RemoveEmptyNodes, MakeDeep, 2)->Apply(Sizes);
BENCHMARK_CAPTURE(Run, UsedMaterials, &CCleanerImpl::RemoveUnusedMaterials, MakeFlat, 1 << 30)->Apply(Sizes);

}  // namespace
