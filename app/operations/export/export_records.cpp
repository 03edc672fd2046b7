// SPDX-License-Identifier: MIT
#include "app/operations/export/export_records.h"

#include <vector>

#include "app/operations/export/animation_runs.h"
#include "app/operations/export/choices.h"
#include "app/operations/export/motion_check.h"
#include "app/operations/export/record_json.h"
#include "app/operations/export/record_names.h"
#include "app/operations/export/unread_keys.h"
#include "app/operations/export/view_camera.h"
#include "app/scene/animations_of.h"

namespace zr {
namespace {

// Makes the records of an animation (null: of the scene at rest) and checks their motion.
Tool RunChecked(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
                const ExportOptions& options, const Clips& clips, MotionReport& report) {
    const Runs runs = RunOne(host, loaded, animation, options);
    report.keysAfter = runs.keys;
    CheckMotion(loaded, runs.records, options, clips, runs.played, runs.replaced, runs.added, report);
    return runs.records;
}

// Every animation has a record of every node, however few of them it moves.
void CheckRecordCount(const LoadedScene& loaded, std::size_t animations) {
    constexpr std::uint64_t kRecord = 256;  // bytes of text, at the least
    const gltf::Document& document = loaded.Document();
    const std::uint64_t nodes = document.Elements(gltf::Kind::kNode).size();
    if (animations * nodes * kRecord > document.Budget().Total())
        document.Fail(gltf::ErrorKind::kLimit, "/animations",
                      "more records than a file of this size may claim; --animation chooses");
}

}  // namespace

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
        if (renameMap != nullptr) *renameMap = RenameMap(loaded, none);
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

    CheckRecordCount(loaded, animations.size());
    const bool isList = animations.size() > 1;
    if (isList) {
        out.Open('{');
        out.Open('[', "animations");
    }
    for (std::size_t i = 0; i < animations.size(); ++i) {
        progress(static_cast<double>(i) / static_cast<double>(animations.size()));
        MotionReport one;
        one.keysBefore = keys[i];
        const Tool tool = RunChecked(host, loaded, animations[i], options, clips, one);
        CheckDeviation(one, options);
        if (renameMap != nullptr && i == 0) *renameMap = RenameMap(loaded, tool);
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
