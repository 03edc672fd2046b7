// SPDX-License-Identifier: MIT
#include "app/operations/export/export_scene.h"

#include <optional>
#include <stdexcept>

#include "app/operations/export/added_keys.h"
#include "app/operations/export/bake.h"
#include "app/operations/export/flip_objects.h"
#include "app/operations/export/record_json.h"
#include "app/operations/export/record_keys.h"
#include "app/operations/export/record_names.h"
#include "app/operations/export/record_nodes.h"
#include "app/operations/export/unread_keys.h"
#include "app/operations/export/view_camera.h"
#include "app/scene/animations_of.h"
#include "host/stream.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// Runs the tools on the animation with its curves as these need them, and compares with the curves as they
// are.
Tool RunAndCompare(Host& host, kernix::SceneModel& scene, kernix::AnimationModel& animation,
                   const ExportOptions& options, Curves curves, MotionReport& report) {
    const std::vector<TrackKeys> before = BakeCurves(scene, animation, options, curves);
    const Tool tool = RunTool(host, scene, &animation, options);
    PutBack(scene, before);
    CompareMotion(tool, scene, animation, options, report);
    return tool;
}

// Which nodes are split may depend on what moves them. An animation with the fullest track of every node asks
// for the records that fit all the others; it is to be deleted again.
kernix::AnimationModel* AddFullestTracks(kernix::SceneModel& scene) {
    kernix::AnimationModel* all = scene.AddAnimation(u"");
    for (auto* plain : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
        auto* controller = static_cast<kernix::TransformControllerModel*>(
            plain->GetController(vl::zr::kControllerTransform));
        if (controller == nullptr) continue;
        vl::zr::Track* fullest = nullptr;
        for (auto* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
            if (fullest == nullptr || track->GetKeyCount() > fullest->GetKeyCount()) fullest = track;
        }
        if (fullest == nullptr) continue;
        const auto stream = vl::Ref<vl::Stream>::Adopt(vl::Stream::CreateInMemory());
        controller->SaveTrack(stream.Get(), fullest, 0);
        stream->Seek(0, 0);
        controller->LoadTrack(stream.Get(), 0, controller->AddTrack(all));
    }
    return all;
}

}  // namespace

MotionReport ExportScene(Host& host, LoadedScene& loaded, const ExportOptions& options,
                         const ExportProgress& progress, std::string* renameMap) {
    kernix::SceneModel& scene = loaded.Scene();
    std::optional<ViewCamera> camera;
    if (options.Has(vl::tk::kExportSystemCamera)) camera.emplace(loaded);
    if (scene.m_pNodes->m_nCount == 0) return {};  // an empty scene stays one
    if (options.Has(vl::tk::kIgnoreAnimation)) {
        for (kernix::AnimationModel* animation : AnimationsOf(scene)) scene.DeleteAnimation(animation);
    }
    const std::vector<kernix::AnimationModel*> animations = AnimationsOf(scene);
    MotionReport report;
    for (const kernix::AnimationModel* animation : animations) report.keysBefore += CountKeys(*animation);
    std::vector<AddedKeys> added;
    kernix::AnimationModel* all = animations.size() > 1 ? AddFullestTracks(scene) : nullptr;
    if (all != nullptr) BakeCurves(scene, *all, options, Curves::kAny);
    Tool records;
    if (animations.size() != 1) records = RunTool(host, scene, all, options);
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        const Tool tool = RunAndCompare(host, scene, *animations[i], options, Curves::kAny, report);
        if (!records) records = tool;
        const std::size_t addedBefore = added.size();
        CollectAddedKeys(tool, *animations[i], added);
        if (!SameStructure(records, tool) && (added.size() != addedBefore || !KeysFit(tool, records))) {
            throw std::runtime_error(
                "the animation \"" + kernix::ToUtf8(animations[i]->m_name) +
                "\" needs other nodes than the others with these options: export them one by one "
                "with --animation");
        }
        TakeBackKeys(tool, scene, *animations[i], options);
    }
    if (all != nullptr) scene.DeleteAnimation(all);
    report.unreadKeys = CheckUnreadKeys(loaded, records, options);
    if (renameMap != nullptr) *renameMap = RenameMap(records);
    WriteMaterialNames(loaded, records);
    const std::vector<std::size_t> nodes = WriteRecordNodes(loaded, records, options);
    if (camera) camera->Write(loaded.Document(), records, nodes, options);
    WriteAddedKeys(loaded, nodes, added);
    loaded.WriteBack();
    if (options.Has(vl::tk::kFlipAxes)) FlipObjects(loaded.Document());
    progress(1);
    return report;
}

MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options, OutputFile& file,
                           std::string* renameMap) {
    CheckUnreadRecordKeys(loaded, options);
    if (options.Has(vl::tk::kExportSystemCamera)) ViewCamera{loaded};
    kernix::AnimationModel* animation = loaded.Scene().GetActiveAnimation();
    MotionReport report;
    if (animation != nullptr) report.keysBefore = CountKeys(*animation);
    const Tool tool = animation != nullptr ? RunAndCompare(host, loaded.Scene(), *animation, options,
                                                           Curves::kStraight, report)
                                           : RunTool(host, loaded.Scene(), nullptr, options);
    if (renameMap != nullptr) *renameMap = RenameMap(tool);
    WriteRecordJson(tool, options, file);
    return report;
}

}  // namespace zr
