// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>

#include "app/commands/batch.h"
#include "app/commands/commands.h"
#include "app/commands/export_arguments.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/reduction.h"
#include "app/commands/refusals.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/export/export_records.h"
#include "app/operations/export/export_scene.h"
#include "app/operations/export/keep_scene.h"
#include "app/operations/export/split_aims.h"
#include "base/text.h"

namespace zr {
namespace {

// Removes all but the chosen animations from the scene and makes the first of them active.
void KeepAnimations(kernix::SceneModel& scene, const std::vector<std::string>& names) {
    const auto chosen = ChooseAnimations(scene, names);
    for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
        if (std::find(chosen.begin(), chosen.end(), animation) == chosen.end())
            scene.DeleteAnimation(animation);
    }
    scene.SetActiveAnimation(chosen.front());
}

JsonObject JsonOf(const MotionReport& report) {
    JsonObject json;
    json.Set("keysBefore", report.keysBefore).Set("keysAfter", report.keysAfter);
    json.Set("check", NameOf(report.check)).Set("deviation", report.deviation);
    if (!report.node.empty()) json.Set("node", report.node).Set("time", report.time);
    if (!report.animation.empty()) json.Set("animation", report.animation);
    return json;
}

class Exporter {
public:
    Exporter(Session& session, const ExportArguments& arguments, const ExportOptions& options)
        : m_session(session), m_arguments(arguments), m_options(options) {}

    Report Run(const Task& task, const Advance& advance) const {
        const bool wantsRecords = HasEnding(task.output, ".json") ||
                                  (task.output == kStandardStream && m_arguments.Files().format == "json");
        CheckPageFile(m_session, m_arguments.PageFile(),
                      {task.input, task.output, m_arguments.RenameMapFile()});
        if (wantsRecords && !m_arguments.Tolerance().empty())
            throw UsageError("--tolerance needs a .glb or .gltf file as output");
        if (wantsRecords && !m_arguments.PageFile().empty())
            throw UsageError("--report needs a .glb or .gltf file as output");
        OutputTarget out(m_session, task.output, EndingOf(m_arguments.Files().format));
        std::optional<OutputTarget> mapTarget;
        if (!m_arguments.RenameMapFile().empty())
            mapTarget.emplace(m_session, m_arguments.RenameMapFile(), ".json");
        const bool printsMap = m_arguments.RenameMapFile() == kStandardStream;

        // Approximate shares of the time.
        constexpr double kLoaded = 0.25, kSceneMade = 0.5, kExported = 0.85;
        Report report;
        gltf::Document document = LoadDocument(m_session, task.input, report);
        if (const auto scene = m_arguments.Scene()) {
            const std::size_t count = document.Elements(gltf::Kind::kScene).size();
            KeepScene(document, *scene, m_arguments.Force());
            if (count > 1)
                report.Note(task.input, {Join("scene ", *scene, " alone is exported, ",
                                              Counted(count - 1, "other scene"), " left out")});
        }
        SplitAims(document, m_options);
        SceneOptions sceneOptions = SceneOptionsOf(m_options, !wantsRecords);
        sceneOptions.force = m_arguments.Force();
        sceneOptions.progress = [&](double done) { advance(kLoaded + (kSceneMade - kLoaded) * done); };
        LoadedScene loaded(std::move(document), sceneOptions);
        advance(kSceneMade);
        if (!m_arguments.Animations().empty()) KeepAnimations(loaded.Scene(), m_arguments.Animations());

        // Paths grow with the depth of the scene, so the map is built only on request.
        std::string map;
        std::string* const wantedMap = mapTarget ? &map : nullptr;
        OutputFile* const mapFile =
            mapTarget && !printsMap ? &out.Files().Create(mapTarget->Path()) : nullptr;
        MotionReport motion;
        std::vector<report::ClipTime> times;
        std::optional<ReduceReport> reduced;
        const auto onProgress = [&](double done) { advance(kSceneMade + (kExported - kSceneMade) * done); };
        if (wantsRecords) {
            motion = ExportRecords(m_session.GetHost(), loaded, m_options, onProgress,
                                   out.Files().Create(out.Path()), wantedMap);
        } else {
            Exported exported =
                ExportScene(m_session.GetHost(), std::move(loaded), m_options, onProgress, wantedMap);
            m_session.ThrowIfStopped();
            if (!m_arguments.Tolerance().empty()) {
                ReduceOptions reduceOptions{ReadReduceTolerance(m_arguments.Tolerance())};
                reduceOptions.progress = [&](double) { m_session.ThrowIfStopped(); };
                reduced = ReduceKeys(exported.document, reduceOptions);
            }
            SaveDocument(exported.document, out);
            motion = std::move(exported.report);
            report.Note(task.input, RefusalLines("unused content", exported.refusals));
            for (const SourceTime& time : exported.times)
                times.push_back({time.animation, time.scale, time.offset, time.from, time.to});
        }
        if (mapFile != nullptr) mapFile->Write(map);
        report.Note(task.input, motion.nodeNotes);
        if (!motion.unreadKeys.empty()) report.Note(task.input, {motion.unreadKeys});
        report.Line(m_arguments.Files().IsSingle() ? Describe(motion)
                                                   : task.output + ": " + Describe(motion));
        report.json = JsonOf(motion);
        if (reduced) {
            report.Line("reduced: " + Describe(*reduced));
            report.json.Set("reduced", JsonOf(*reduced));
        }
        out.Commit(m_session);
        if (printsMap) std::fwrite(map.data(), 1, map.size(), stdout);
        if (!m_arguments.PageFile().empty())
            WritePage(m_arguments.PageFile(), task.output,
                      [&] { return PageWith(task, motion, std::move(times)); });
        return report;
    }

private:
    report::Page PageWith(const Task& task, const MotionReport& motion,
                          std::vector<report::ClipTime> times) const {
        report::Page page = PageOf(m_session, "export", task.input, task.output);
        // From the scene's space to that of the result.
        std::array<double, 16> matrix;
        for (std::size_t i = 0; i < 16; ++i) matrix[i] = m_options.sceneMatrix.m[i / 4][i % 4];
        if (m_options.Has(vl::tk::kFlipAxes))
            for (std::size_t column = 0; column < 16; column += 4)
                std::swap(matrix[column + 1], matrix[column + 2]);
        page.scenes.front().matrix = matrix;
        page.times = std::move(times);
        page.summary.emplace_back("keys and motion", Describe(motion));
        return page;
    }

    Session& m_session;
    const ExportArguments& m_arguments;
    const ExportOptions& m_options;
};

int RunExport(Session& session, ExportArguments& arguments) {
    const ExportOptions& options = arguments.Finish(session.GetHost());
    const std::vector<Task> tasks = PlanTasks(arguments.Files(), kExportFiles);
    if (tasks.size() > 1 && !arguments.RenameMapFile().empty())
        throw UsageError("--rename-map takes one scene");
    if (tasks.size() > 1 && !arguments.PageFile().empty()) throw UsageError("--report takes one scene");
    const Exporter exporter(session, arguments, options);
    return RunBatch(session, "export", arguments.Files(), tasks,
                    [&](const Task& task, const Advance& advance) { return exporter.Run(task, advance); });
}

}  // namespace

void AddExportCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("export", "Prepare a scene for an exporter and write the result");
    auto arguments = std::make_shared<ExportArguments>();
    arguments->AddTo(*command);
    AddExamples(*command,
                {{"export scene.glb out.glb --up z --scale 100 --merge-keys",
                  "For a target with Z up, in centimetres, without redundant keys."},
                 {"export scene.glb step.glb --animation walk --from 1.5 --to 2.25 --start-at-zero --fps 30",
                  "Part of an animation as a clip of its own, with 30 keys per second."},
                 {"export scene.glb sword.glb --only-nodes 'Sword*'",
                  "One part, with the nodes above it that move it."},
                 {"export scene.glb out.json --animation walk --resample",
                  "The records that an exporter reads, with keys of all tracks at the same times; without "
                  "--animation those of all animations."},
                 {"export --out-dir exported --jobs 4 --names unique --max-name 16 scenes",
                  "Every scene below the folder \"scenes\", with short unique names."}});
    OnRun(*command, session, [arguments, &session] { return RunExport(session, *arguments); });
}

}  // namespace zr
