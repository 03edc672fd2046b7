// SPDX-License-Identifier: MIT
#include "app/operations/export/export_scene.h"

#include <optional>

#include "app/operations/export/animation_runs.h"
#include "app/operations/export/bake.h"
#include "app/operations/export/choices.h"
#include "app/operations/export/motion_check.h"
#include "app/operations/export/record_names.h"
#include "app/operations/export/record_nodes.h"
#include "app/operations/export/skin_check.h"
#include "app/operations/export/unread_keys.h"
#include "app/operations/export/view_camera.h"
#include "app/scene/animations_of.h"
#include "app/scene/document_writer.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// A node that loses its mesh has no morph weights to animate.
void DropWeights(const kernix::NodeModel& node, ReplacedKeys& replaced) {
    for (vl::zr::Controller* plain : vl::ArrayOf<vl::zr::Controller*>(node.m_pControllers)) {
        auto* controller = dynamic_cast<kernix::SampledControllerModel*>(plain);
        if (controller == nullptr || !controller->GetTarget().ends_with("/weights")) continue;
        for (vl::zr::Track* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks))
            replaced[track][0] = Curve();
    }
}

DocumentChanges Changes(const LoadedScene& loaded, const ExportOptions& options, Runs runs,
                        const std::optional<ViewCamera>& camera) {
    RecordNodes nodes = NodesOf(loaded, runs.records, options);
    for (const std::size_t node : nodes.bare) DropWeights(*loaded.Node(node), runs.replaced);
    for (AddedKeys& keys : runs.added) keys.node = nodes.indices[keys.node];
    if (camera) nodes.changes.cameras = camera->CamerasOf(runs.records, nodes.indices, options);

    DocumentChanges changes = ChangesOf(loaded, std::move(runs.replaced), std::move(runs.added));
    changes.lengthScale = options.Scale();
    changes.materialNames = MaterialNamesOf(loaded, runs.records);
    changes.nodes = std::move(nodes.changes);
    auto& removed = changes.removal[gltf::Ordinal(gltf::Kind::kNode)];
    removed.resize(loaded.Parts().nodes.size(), false);
    for (const std::size_t node : nodes.rejected) removed[node] = true;
    CheckSkins(loaded.Document(), options, changes);
    changes.takesWhatItLeaves = true;
    return changes;
}

std::vector<SourceTime> TimesOf(const Runs& runs, const Clips& clips) {
    std::vector<SourceTime> times;
    for (const PlayedAnimation& played : runs.played) {
        const Clip clip = clips.Of(*played.animation);
        // An animation of zero length shows its beginning.
        const double scale = played.timeScale != 0 ? clip.speed / double{played.timeScale} : 0;
        times.push_back({kernix::ToUtf8(played.animation->m_name), scale,
                         (scale != 0 ? clip.origin : double{clip.from}) - double{played.timeOffset} * scale,
                         double{clip.from}, double{clip.to}});
    }
    return times;
}

// The changes to the document; nothing for an empty scene.
std::optional<DocumentChanges> RunExport(Host& host, LoadedScene& loaded, const ExportOptions& options,
                                         const ExportProgress& progress, MotionReport& report,
                                         std::vector<SourceTime>& times, std::string* renameMap) {
    kernix::SceneModel& scene = loaded.Scene();
    ChosenNodes chosen = ChooseNodes(loaded, options.nodes);
    report.nodeNotes = std::move(chosen.notes);
    std::optional<ViewCamera> camera;
    if (options.Has(vl::tk::kExportSystemCamera)) camera.emplace(loaded);
    if (scene.m_pNodes->m_nCount == 0) return std::nullopt;
    if (options.Has(vl::tk::kIgnoreAnimation)) {
        for (kernix::AnimationModel* animation : AnimationsOf(scene)) scene.DeleteAnimation(animation);
    }
    PackAll(scene);
    for (const kernix::AnimationModel* animation : AnimationsOf(scene))
        report.keysBefore += CountKeys(*animation);
    const Clips clips(scene, options.clip);
    // Approximate progress after running the tools and after the check.
    constexpr double kRun = 0.6, kChecked = 0.75;
    Runs runs = RunAll(host, loaded, options, [&](double done) { progress(kRun * done); });
    progress(kRun);
    report.keysAfter = runs.keys;
    CheckMotion(loaded, runs.records, options, clips, runs.played, runs.replaced, runs.added, report);
    CheckDeviation(report, options);
    progress(kChecked);
    report.unreadKeys = CheckUnreadKeys(loaded, runs.records, options);
    if (renameMap != nullptr) *renameMap = RenameMap(loaded, runs.records);
    times = TimesOf(runs, clips);
    DocumentChanges changes = Changes(loaded, options, std::move(runs), camera);
    auto& removedSkins = changes.removal[gltf::Ordinal(gltf::Kind::kSkin)];
    removedSkins.resize(loaded.Document().Elements(gltf::Kind::kSkin).size(), false);
    for (const std::size_t skin : chosen.skins) removedSkins[skin] = true;
    return changes;
}

}  // namespace

SceneOptions SceneOptionsOf(const ExportOptions& options, bool whole) {
    SceneOptions sceneOptions;
    sceneOptions.whole = whole;
    if (!options.Has(vl::tk::kAllRenderables))
        sceneOptions.meshes = options.Has(vl::tk::kNoSecondary) ? Meshes::kFaces : Meshes::kFacesOrLines;
    return sceneOptions;
}

Exported ExportScene(Host& host, LoadedScene&& loadedScene, const ExportOptions& given,
                     const ExportProgress& progress, std::string* renameMap) {
    std::optional<LoadedScene> loaded(std::move(loadedScene));
    ExportOptions options = WithChoicesMade(*loaded, given);
    // Cameras and lights that follow a target get sampled keys, so curves cannot be kept.
    options.keepsCurves = given.keepsCurves && !HasAims(loaded->Scene());
    MotionReport report;
    std::vector<SourceTime> times;
    const auto changes = RunExport(host, *loaded, options, progress, report, times, renameMap);
    gltf::Document document = std::move(loaded->Document());
    loaded.reset();  // frees memory for the growing document
    std::vector<gltf::OpaqueUse> refusals;
    if (changes) refusals = WriteDocument(document, *changes);
    progress(1);
    return {std::move(document), std::move(report), std::move(refusals), std::move(times)};
}

}  // namespace zr
