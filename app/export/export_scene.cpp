// SPDX-License-Identifier: MIT
#include "app/export/export_scene.h"

#include <stdexcept>

#include "app/export/bake.h"
#include "app/export/record_json.h"
#include "app/export/record_keys.h"
#include "app/export/record_nodes.h"
#include "kernix/utf.h"

namespace zr {
namespace {

std::vector<kernix::AnimationModel*> Animations(kernix::SceneModel& scene) {
    std::vector<kernix::AnimationModel*> animations;
    for (auto* animation : vl::ArrayOf<vl::zr::Animation*>(scene.m_pAnimations)) {
        animations.push_back(static_cast<kernix::AnimationModel*>(animation));
    }
    return animations;
}

}  // namespace

void ExportScene(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress) {
    kernix::SceneModel& scene = loaded.Scene();
    if (options.Has(vl::tk::kIgnoreAnimation)) {
        for (kernix::AnimationModel* animation : Animations(scene)) scene.DeleteAnimation(animation);
    }
    BakeCurves(scene, options);
    const std::vector<kernix::AnimationModel*> animations = Animations(scene);
    Tool first = RunTool(host, scene, animations.empty() ? nullptr : animations.front(), options);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        Tool later;
        if (i > 0) {
            later = RunTool(host, scene, animations[i], options);
            if (!SameStructure(first, later)) {
                throw std::runtime_error("the animations \"" + kernix::ToUtf8(animations.front()->m_name) + "\" and \"" +
                                         kernix::ToUtf8(animations[i]->m_name) +
                                         "\" need different nodes with these options: export them one by one with --animation");
            }
        }
        TakeBackKeys(i > 0 ? later : first, scene, *animations[i], options);
    }
    WriteRecordNodes(loaded, first, options);
    loaded.WriteBack();
    progress(1);
}

void ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options, const std::filesystem::path& file) {
    BakeCurves(loaded.Scene(), options);
    WriteRecordJson(RunTool(host, loaded.Scene(), loaded.Scene().GetActiveAnimation(), options), options, file);
}

}  // namespace zr
