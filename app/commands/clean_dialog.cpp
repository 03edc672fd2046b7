// SPDX-License-Identifier: MIT
#include "app/commands/clean_dialog.h"

#include <stdexcept>
#include <utility>

#include "app/commands/windows.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"

namespace zr {
namespace {

// The dialog offers every operation, so what any of them removes must be free of references that cannot be
// followed.
void RefuseOpaque(const std::filesystem::path& scene, gltf::Document& document) {
    for (const gltf::OpaqueUse& use : gltf::OpaqueReferences(document).uses) {
        for (const CleanStepInfo& step : kCleanStepInfo) {
            if (!step.removes || !use.kinds.Has(*step.removes)) continue;
            throw std::runtime_error(scene.string() + ": the extension " + use.extension + " at " +
                                     use.place +
                                     " could refer to what is removed (--force goes on all the same)");
        }
    }
}

}  // namespace

void CleanInDialog(gltf::Document document, const std::filesystem::path& output, Host& host,
                   const CleanOptions& options) {
    StartWindows();
    if (!options.force) RefuseOpaque(document.File(), document);
    LoadedScene loaded(std::move(document), SceneOptionsOf(options));
    EnvironmentService environment(host);
    environment.Run(loaded.Document(),
                    [&] { host.Create<zr_CLEANER>(kTypeCleaner)->RunDialog(&loaded.Scene()); });
    loaded.WriteBack();
    if (!options.keepData) {
        gltf::CollectGarbage(loaded.Document(), kShownKinds, options.force);
        gltf::CollectGarbage(loaded.Document(), gltf::kDataKinds, options.force);
    }
    loaded.Document().Save(output);
}

}  // namespace zr
