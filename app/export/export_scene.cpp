// SPDX-License-Identifier: MIT
#include "app/export/export_scene.h"

#include <stdexcept>

#include "app/export/added_keys.h"
#include "app/export/bake.h"
#include "app/export/flip_objects.h"
#include "app/export/record_json.h"
#include "app/export/record_keys.h"
#include "app/export/record_names.h"
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

MotionReport ExportScene(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress,
                         std::string* renameMap) {
    kernix::SceneModel& scene = loaded.Scene();
    if (scene.m_pNodes->m_nCount == 0) return {};  // an empty scene stays one
    if (options.Has(vl::tk::kIgnoreAnimation)) {
        for (kernix::AnimationModel* animation : Animations(scene)) scene.DeleteAnimation(animation);
    }
    const std::vector<kernix::AnimationModel*> animations = Animations(scene);
    MotionReport report;
    for (const kernix::AnimationModel* animation : animations) report.keysBefore += CountKeys(*animation);
    BakeCurves(scene, options);
    std::vector<AddedKeys> added;
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
        const Tool& tool = i > 0 ? later : first;
        CompareMotion(tool, scene, *animations[i], options, report);
        CollectAddedKeys(tool, *animations[i], added);
        TakeBackKeys(tool, scene, *animations[i], options);
    }
    if (renameMap != nullptr) *renameMap = RenameMap(first);
    WriteMaterialNames(loaded, first);
    WriteAddedKeys(loaded, WriteRecordNodes(loaded, first, options), added);
    loaded.WriteBack();
    if (options.Has(vl::tk::kFlipAxes)) FlipObjects(loaded.Document());
    progress(1);
    return report;
}

MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options, const std::filesystem::path& file,
                           std::string* renameMap) {
    kernix::AnimationModel* animation = loaded.Scene().GetActiveAnimation();
    MotionReport report;
    if (animation != nullptr) report.keysBefore = CountKeys(*animation);
    BakeCurves(loaded.Scene(), options);
    const Tool tool = RunTool(host, loaded.Scene(), animation, options);
    if (animation != nullptr) CompareMotion(tool, loaded.Scene(), *animation, options, report);
    if (renameMap != nullptr) *renameMap = RenameMap(tool);
    WriteRecordJson(tool, options, file);
    return report;
}

}  // namespace zr
