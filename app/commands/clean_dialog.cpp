// SPDX-License-Identifier: MIT
#include "app/commands/clean_dialog.h"

#include <utility>

#include "app/commands/windows.h"
#include "app/operations/clean/metadata_guard.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/refuse_opaque.h"
#include "app/services/host.h"
#include "base/memory_watch.h"

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

bool CleanInDialog(gltf::Document document, const std::filesystem::path& output, Host& host,
                   const CleanOptions& options) {
    StartWindows();
    if (!options.force) RefuseOpaque(document, RemovableKinds());
    const SceneOptions sceneOptions = SceneOptionsOf(options);
    LoadedScene loaded(std::move(document), sceneOptions);
    const MetadataGuard guard(loaded);
    EnvironmentService environment(host);
    environment.Run(loaded.Document(),
                    [&] { host.Create<zr_CLEANER>(kTypeCleaner)->RunDialog(&loaded.Scene()); });
    if (!loaded.Scene().HasChangeRecord()) return false;
    gltf::Document cleaned = std::move(loaded).WriteBack();
    if (!options.keepData) {
        gltf::CollectGarbage(cleaned, kShownKinds, options.force);
        gltf::CollectGarbage(cleaned, gltf::kDataKinds, options.force);
    }
    RequireMemory();
    cleaned.Save(output);
    return true;
}

}  // namespace zr
