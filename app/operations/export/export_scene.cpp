// SPDX-License-Identifier: MIT
#include "app/operations/export/export_scene.h"

#include <optional>
#include <stdexcept>

#include "app/operations/export/bake.h"
#include "app/operations/export/choices.h"
#include "app/operations/export/motion_check.h"
#include "app/operations/export/record_json.h"
#include "app/operations/export/record_keys.h"
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

// Which nodes are split may depend on what moves them. An animation with the fullest track of every node
// yields records that fit all other animations; it is removed with this object.
class FullestTracks {
public:
    explicit FullestTracks(kernix::SceneModel& scene) : m_scene(scene), m_animation(scene.AddAnimation(u"")) {
        for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes)) {
            auto* controller = static_cast<kernix::TransformControllerModel*>(
                node->GetController(vl::zr::kControllerTransform));
            if (controller == nullptr) continue;
            vl::zr::Track* fullest = nullptr;
            for (auto* track : vl::ArrayOf<vl::zr::Track*>(controller->m_pTracks)) {
                if (fullest == nullptr || track->GetKeyCount() > fullest->GetKeyCount()) fullest = track;
            }
            if (fullest == nullptr) continue;
            kernix::TransformTrack& copy = *controller->AddTransformTrack(m_animation);
            for (const int keyType : kKeyTypes)
                copy.SetCurve(keyType, kernix::StoredCurve(
                                           KeysOf(static_cast<kernix::TransformTrack&>(*fullest), keyType)));
        }
    }
    ~FullestTracks() { m_scene.DeleteAnimation(m_animation); }

    FullestTracks(const FullestTracks&) = delete;
    FullestTracks& operator=(const FullestTracks&) = delete;

    kernix::AnimationModel& Animation() { return *m_animation; }

private:
    kernix::SceneModel& m_scene;
    kernix::AnimationModel* m_animation;
};

// A run with the animation's curves as the tools need them; they are restored afterwards.
Tool RunBaked(Host& host, LoadedScene& loaded, kernix::AnimationModel& animation,
              const ExportOptions& options, Curves curves) {
    const BakedCurves baked(loaded.Scene(), animation, options, curves);
    return RunTool(host, loaded, &animation, options);
}

// What all animations have in common, and the keys of each.
struct Runs {
    Runs(const LoadedScene& loaded, const ExportOptions& options) : factors(loaded, options) {}

    ValueFactors factors;
    Tool records;
    std::vector<PlayedAnimation> played;
    ReplacedKeys replaced;
    std::vector<AddedKeys> added;  // by record, not by node
    std::size_t keys = 0;          // of all records in all animations
};

std::size_t KeysOf(const Tool& tool, const ExportOptions& options) {
    std::size_t count = 0;
    const auto add = [&count](const vl::Array* track) {
        if (track != nullptr) count += static_cast<std::size_t>(track->m_nCount);
    };
    for (const ExportNode* record : AllRecords(tool)) {
        if (!ReportsKeys(*record, options)) continue;
        add(record->pPosKeys);
        add(record->pRotKeys);
        add(record->pScaleKeys);
    }
    return count;
}

void Gather(const Tool& tool, const kernix::AnimationModel& animation, const ExportOptions& options,
            Runs& runs) {
    CollectKeys(tool, animation, options, runs.replaced, runs.added);
    runs.played.push_back({&animation, tool->m_fTimeScale, tool->m_fTimeOffset, tool->GetStartTime()});
    CollectSampledKeys(runs.played.back(), runs.factors, runs.replaced);
    runs.keys += KeysOf(tool, options);
}

// The keys of one animation alone, on records of its own.
void RunAnew(Host& host, LoadedScene& loaded, kernix::AnimationModel& animation, const ExportOptions& options,
             Runs& runs) {
    const Tool tool = RunBaked(host, loaded, animation, options, Curves::kAny);
    if (!runs.records) runs.records = tool;
    const std::size_t addedBefore = runs.added.size();
    Gather(tool, animation, options, runs);
    if (!SameStructure(runs.records, tool) &&
        (runs.added.size() != addedBefore || !KeysFit(tool, runs.records))) {
        throw std::runtime_error("the animation \"" + kernix::ToUtf8(animation.m_name) +
                                 "\" needs other nodes than the others with these options: export them one "
                                 "by one with --animation");
    }
}

// The tools run once for all animations; the keys of each are then processed on the existing records, where
// these allow it.
Runs RunAll(Host& host, LoadedScene& loaded, const ExportOptions& options, const ExportProgress& progress) {
    kernix::SceneModel& scene = loaded.Scene();
    const std::vector<kernix::AnimationModel*> animations = AnimationsOf(scene);
    Runs runs(loaded, options);
    if (animations.empty()) runs.records = RunTool(host, loaded, nullptr, options);
    if (animations.size() == 1) RunAnew(host, loaded, *animations[0], options, runs);
    if (animations.size() < 2) return runs;
    {
        FullestTracks fullest(scene);
        runs.records = RunBaked(host, loaded, fullest.Animation(), options, Curves::kAny);
    }
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        kernix::AnimationModel& animation = *animations[i];
        bool stands = false;
        {
            const BakedCurves baked(scene, animation, options, Curves::kAny);
            stands = RunToolAgain(runs.records, scene, animation);
        }
        if (stands) {
            Gather(runs.records, animation, options, runs);
        } else {
            RunAnew(host, loaded, animation, options, runs);
        }
        for (vl::zr::Track* track : animation.Tracks()) {
            if (auto* transform = dynamic_cast<kernix::TransformTrack*>(track)) transform->Unload();
        }
    }
    return runs;
}

// Without its mesh a node has no morph weights to move.
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

// What the stages read and replace are curves.
void PackAll(kernix::SceneModel& scene) {
    for (const kernix::AnimationModel* animation : AnimationsOf(scene)) {
        for (vl::zr::Track* track : animation->Tracks()) {
            if (auto* transform = dynamic_cast<kernix::TransformTrack*>(track)) PackKeys(*transform);
        }
    }
}

std::vector<SourceTime> TimesOf(const Runs& runs, const Clips& clips) {
    std::vector<SourceTime> times;
    for (const PlayedAnimation& played : runs.played) {
        const Clip clip = clips.Of(*played.animation);
        // An animation that was brought to no length at all shows its begin.
        const double scale = played.timeScale != 0 ? clip.speed / double{played.timeScale} : 0;
        times.push_back({kernix::ToUtf8(played.animation->m_name), scale,
                         (scale != 0 ? clip.origin : double{clip.from}) - double{played.timeOffset} * scale,
                         double{clip.from}, double{clip.to}});
    }
    return times;
}

std::size_t CountAll(kernix::SceneModel& scene) {
    std::size_t count = 0;
    for (const kernix::AnimationModel* animation : AnimationsOf(scene)) count += CountKeys(*animation);
    return count;
}

// The records of an animation (null: of the scene at rest), and how they play.
Tool RunForRecords(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
                   const ExportOptions& options, const Clips& clips, MotionReport& report) {
    Runs runs(loaded, options);
    if (animation != nullptr) {
        runs.records = RunBaked(host, loaded, *animation, options, Curves::kLinear);
        if (!options.Has(vl::tk::kIgnoreAnimation)) Gather(runs.records, *animation, options, runs);
    } else {
        runs.records = RunTool(host, loaded, nullptr, options);
    }
    report.keysAfter = runs.keys;
    CheckMotion(loaded, runs.records, options, clips, runs.played, runs.replaced, runs.added, report);
    return runs.records;
}

// What becomes of the document; nothing where an empty scene stays one.
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
    report.keysBefore = CountAll(scene);
    const Clips clips(scene, options.clip);
    // Approximate shares of the time.
    constexpr double kRun = 0.6, kChecked = 0.75;
    Runs runs = RunAll(host, loaded, options, [&](double done) { progress(kRun * done); });
    progress(kRun);
    report.keysAfter = runs.keys;
    CheckMotion(loaded, runs.records, options, clips, runs.played, runs.replaced, runs.added, report);
    CheckDeviation(report, options);
    progress(kChecked);
    report.unreadKeys = CheckUnreadKeys(loaded, runs.records, options);
    if (renameMap != nullptr) *renameMap = RenameMap(runs.records);
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
    // What turns with its aim has keys of its own.
    options.keepsCurves = given.keepsCurves && !HasAims(loaded->Scene());
    MotionReport report;
    std::vector<SourceTime> times;
    const auto changes = RunExport(host, *loaded, options, progress, report, times, renameMap);
    gltf::Document document = std::move(loaded->Document());
    loaded.reset();  // the document grows where the scene was
    std::vector<gltf::OpaqueUse> refusals;
    if (changes) refusals = WriteDocument(document, *changes);
    progress(1);
    return {std::move(document), std::move(report), std::move(refusals), std::move(times)};
}

MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& given,
                           const ExportProgress& progress, OutputFile& file, std::string* renameMap) {
    const ExportOptions options = WithChoicesMade(loaded, given);
    MotionReport report;
    report.nodeNotes = ChooseNodes(loaded, options.nodes).notes;
    if (options.Has(vl::tk::kExportSystemCamera)) ViewCamera{loaded};
    kernix::SceneModel& scene = loaded.Scene();
    gltf::JsonStream out([&file](std::string_view piece) { file.Write(piece); });
    if (scene.m_pNodes->m_nCount == 0) {
        Tool none = host.Create<vl::tk::Serializer>(kTypeKeyframeTool);
        none->m_pScene = &scene;
        if (renameMap != nullptr) *renameMap = RenameMap(none);
        WriteRecordJson(loaded, none, options, nullptr, out);
        return report;
    }
    std::vector<kernix::AnimationModel*> animations = AnimationsOf(scene);
    if (animations.size() < 2 || options.Has(vl::tk::kIgnoreAnimation))
        animations = {scene.GetActiveAnimation()};
    for (const kernix::AnimationModel* animation : animations)
        CheckUnreadRecordKeys(loaded, animation, options);
    PackAll(scene);
    std::vector<std::size_t> keys;
    for (const kernix::AnimationModel* animation : animations)
        keys.push_back(animation != nullptr ? CountKeys(*animation) : 0);
    const Clips clips(scene, options.clip);

    const bool isList = animations.size() > 1;
    if (isList) {
        out.Open('{');
        out.Open('[', "animations");
    }
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        MotionReport one;
        one.keysBefore = keys[i];
        const Tool tool = RunForRecords(host, loaded, animations[i], options, clips, one);
        CheckDeviation(one, options);
        if (renameMap != nullptr && i == 0) *renameMap = RenameMap(tool);
        WriteRecordJson(loaded, tool, options, isList ? animations[i] : nullptr, out);
        Add(report, one);
    }
    if (isList) {
        out.Close();
        out.Close();
    }
    return report;
}

}  // namespace zr
