// SPDX-License-Identifier: MIT
#include "app/commands/clean_dialog.h"

#include <utility>

#include "app/commands/windows.h"
#include "app/operations/clean/metadata_guard.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/refuse_opaque.h"
#include "app/services/host.h"

namespace zr {
namespace {

// The dialog offers every operation.
gltf::KindSet RemovableKinds() {
    gltf::KindSet kinds;
    for (const CleanStepInfo& step : kCleanStepInfo)
        if (step.removes) kinds.Add(*step.removes);
    return kinds;
}

}  // namespace

std::optional<DialogCleaning> CleanInDialog(gltf::Document document, Host& host,
                                            const CleanOptions& options) {
    StartWindows();
    if (!options.force) RefuseOpaque(document, RemovableKinds());
    const SceneOptions sceneOptions = SceneOptionsOf(options);
    LoadedScene loaded(std::move(document), sceneOptions);
    const MetadataGuard guard(loaded);
    EnvironmentService environment(host);
    environment.Run(loaded.Document(),
                    [&] { host.Create<zr_CLEANER>(kTypeCleaner)->RunDialog(&loaded.Scene()); });
    if (!loaded.Scene().HasChangeRecord()) return std::nullopt;
    DialogCleaning cleaning{std::move(loaded).WriteBack(), {}};
    if (!options.keepData) {
        gltf::KindSet kinds = kShownKinds;
        kinds.Add(gltf::kDataKinds);
        cleaning.collected = gltf::CollectGarbage(cleaning.document, kinds, options.force);
    }
    return cleaning;
}

}  // namespace zr
