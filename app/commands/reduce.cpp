// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>

#include "app/commands/batch.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/reduction.h"
#include "app/commands/session.h"
#include "app/operations/export/export_scene.h"
#include "app/operations/export/split_aims.h"

namespace zr {
namespace {

struct ReduceArguments {
    BatchArguments files;
    std::string tolerance;
};

// The tools' own pass drops the keys that matter only by rounding, so that the whole tolerance is left for
// the others.
Exported WithoutRedundantKeys(Session& session, gltf::Document document, const Advance& advance) {
    ExportOptions options;
    options.exportFlags |= vl::tk::kMergeKeys;
    options.keepsCurves = true;
    SplitAims(document, options);
    return ExportScene(session.GetHost(), LoadedScene(std::move(document), SceneOptionsOf(options, true)),
                       options, advance);
}

Report Reduce(Session& session, const ReduceTolerance& tolerance, const ReduceArguments& arguments,
              const Task& task, const Advance& advance) {
    constexpr double kMerged = 0.3;  // approximate share of the time
    OutputTarget out(session, task.output, EndingOf(arguments.files.format));
    Report report;
    gltf::Document document = LoadDocument(session, task.input, report);
    ReduceOptions options{tolerance, compare::Evaluator(document).Animations()};
    Exported exported =
        WithoutRedundantKeys(session, std::move(document), [&](double done) { advance(kMerged * done); });
    options.progress = [&](double done) { advance(kMerged + (1 - kMerged) * done); };
    const ReduceReport reduced = ReduceKeys(exported.document, options);
    SaveDocument(exported.document, out);
    report.Line(arguments.files.IsSingle() ? Describe(reduced) : task.output + ": " + Describe(reduced));
    report.json = JsonOf(reduced);
    out.Commit(session);
    return report;
}

int RunReduce(Session& session, const ReduceArguments& arguments) {
    const ReduceTolerance tolerance = ReadReduceTolerance(arguments.tolerance);
    session.GetHost();
    return RunBatch(session, "reduce", arguments.files, PlanTasks(arguments.files, kSceneFiles),
                    [&](const Task& task, const Advance& advance) {
                        return Reduce(session, tolerance, arguments, task, advance);
                    });
}

}  // namespace

void AddReduceCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand(
        "reduce", "Drop and refit keys within a tolerance that holds where the motion is visible");
    auto arguments = std::make_shared<ReduceArguments>();
    command
        ->add_option("--tolerance", arguments->tolerance,
                     "How far a drawn point may be off, such as 0.1mm, how far a camera or light may turn "
                     "(default: 0.05deg), and how much weights and pointers may differ (default: 0)")
        ->type_name(kToleranceType)
        ->required();
    AddBatchOptions(*command, arguments->files, kSceneFiles, "SCENE OUT");
    AddExamples(
        *command,
        {{"reduce scene.glb small.glb --tolerance 0.1mm,0.05deg", "Nothing visible is off by more."},
         {"reduce scene.glb small.glb --tolerance 1mm,0.1deg,0.001", "Morph weights are reduced as well."},
         {"reduce --out-dir small --jobs 2 --tolerance 0.5mm scenes", "Every scene below a folder."}});
    OnRun(*command, session, [arguments, &session] { return RunReduce(session, *arguments); });
}

}  // namespace zr
