// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "app/commands/batch.h"
#include "app/commands/clean_dialog.h"
#include "app/commands/clean_report.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/session.h"
#include "base/file.h"
#include "base/text.h"

namespace zr {

namespace {

struct Arguments {
    BatchArguments files;
    std::vector<std::string> only;
    std::vector<std::string> skip;
    bool all = false;
    bool dryRun = false;
    bool explain = false;
    bool dialog = false;
    CleanOptions options;
    std::string page;
};

std::size_t StepNamed(const std::string& name) {
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        if (kCleanStepInfo[step].name == name) return step;
    }
    std::string known;
    for (const CleanStepInfo& info : kCleanStepInfo) {
        if (!known.empty()) known += ", ";
        known += info.name;
    }
    throw UsageError("there is no operation \"" + name + "\"; the operations are " + known);
}

std::array<bool, kCleanSteps> ChosenSteps(const Arguments& arguments) {
    std::array<bool, kCleanSteps> steps{};
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        steps[step] = arguments.only.empty() && (arguments.all || kCleanStepInfo[step].unseen);
    }
    // --all would otherwise remove the extras and keep only their elements.
    if (arguments.options.keepExtras) steps[static_cast<std::size_t>(CleanStep::kMetadata)] = false;
    for (const std::string& name : arguments.only) steps[StepNamed(name)] = true;
    for (const std::string& name : arguments.skip) steps[StepNamed(name)] = false;
    return steps;
}

// Keeps the data until the process exits, which frees it faster than destructors do.
void KeepUntilExit(std::shared_ptr<void> work) {
    static auto* const left = new std::vector<std::shared_ptr<void>>;
    left->push_back(std::move(work));
}

class Cleaning {
public:
    Cleaning(Session& session, const Arguments& arguments, std::size_t scenes)
        : m_session(session), m_arguments(arguments), m_environment(session.GetHost()) {
        m_options = arguments.options;
        m_options.steps = ChosenSteps(arguments);
        m_options.explain = arguments.explain || !arguments.page.empty();
        if (scenes == 1) m_options.retire = KeepUntilExit;
    }

    Report Run(const Task& task, const Advance& advance) {
        // Approximate shares of the time: loading, cleaning, writing.
        constexpr double kLoaded = 0.25, kCleaned = 0.85;
        const auto onProgress = [&](double done) { advance(kLoaded + (kCleaned - kLoaded) * done); };
        CheckPageFile(m_session, m_arguments.page, {task.input, task.output});
        std::optional<OutputTarget> out;
        if (!task.output.empty()) out.emplace(m_session, task.output, EndingOf(m_arguments.files.format));
        Report report;
        gltf::Document document = LoadDocument(m_session, task.input, report);
        onProgress(0);
        const auto cleaner = m_session.GetHost().Create<zr_CLEANER>(kTypeCleaner);
        CleanReport cleaned;
        cleaned.scene = task.input;
        cleaned.bytesBefore = document.SourceSize();
        cleaned.result =
            CleanDocument(document, *cleaner, m_environment, m_session.GetContext(), m_options, onProgress);
        m_session.ThrowIfStopped();
        if (out) {
            cleaned.bytesAfter = SaveDocument(document, *out);
            cleaned.output = task.output;
        }
        report.Note("left alone", CleanRefusals(cleaned));
        report.text = CleanReportText(cleaned, m_arguments.dryRun, m_arguments.explain);
        report.json = CleanReportJson(cleaned, m_arguments.explain);
        report.isAnswer = m_arguments.dryRun;
        if (out) out->Commit(m_session);
        if (!m_arguments.page.empty()) {
            WritePage(m_arguments.page, task.output, [&] {
                report::Page page = PageOf(m_session, "clean", task.input, task.output);
                page.result = CleanReportJson(cleaned, true).Text();
                return page;
            });
        }
        return report;
    }

private:
    Session& m_session;
    const Arguments& m_arguments;
    EnvironmentService m_environment;
    CleanOptions m_options;
};

int RunClean(Session& session, const Arguments& arguments) {
    if (!arguments.page.empty() && (!arguments.files.IsSingle() || arguments.dryRun))
        throw UsageError("--report needs one input and one output: SCENE OUT");
    const std::vector<Task> tasks = PlanTasks(arguments.files, kSceneFiles, !arguments.dryRun);
    Cleaning cleaning(session, arguments, tasks.size());
    return RunBatch(session, "clean", arguments.files, tasks,
                    [&](const Task& task, const Advance& advance) { return cleaning.Run(task, advance); });
}

int RunDialog(Session& session, const Arguments& arguments) {
    bool isCancelled = false;
    const auto run = [&](const Task& task, const Advance&) {
        OutputTarget out(session, task.output, EndingOf(arguments.files.format));
        Report report;
        gltf::Document document = LoadDocument(session, task.input, report);
        CleanReport cleaned{.scene = task.input, .output = task.output, .bytesBefore = document.SourceSize()};
        auto cleaning = CleanInDialog(std::move(document), session.GetHost(), arguments.options);
        isCancelled = !cleaning;
        if (isCancelled) throw Stopped();
        cleaned.result.collected = cleaning->collected;
        cleaned.bytesAfter = SaveDocument(cleaning->document, out);
        report.json = CleanReportJson(cleaned, false);
        report.text = Join(Printable(task.input), " -> ", Printable(task.output), "\n");
        out.Commit(session);
        return report;
    };
    const std::vector<Task> tasks = PlanTasks(arguments.files, kSceneFiles);
    const int status = RunBatch(session, "clean", arguments.files, tasks, run);
    if (!isCancelled) return status;
    std::fputs("zr: cancelled; nothing was written\n", stderr);
    return kStoppedStatus;
}

}  // namespace

void AddCleanCommand(CLI::App& app, Session& session) {
    const auto arguments = std::make_shared<Arguments>();
    CLI::App* command = app.add_subcommand("clean", "Remove unused and duplicate content from scenes");
    std::string steps = "Operations:";
    for (const CleanStepInfo& info : kCleanStepInfo) {
        steps += "\n  " + std::string(info.name) + ": " + std::string(info.what) +
                 (info.unseen ? "" : " (with --all)");
    }
    command->footer(steps);
    AddBatchOptions(*command, arguments->files, kSceneFiles, "SCENE OUT");
    CLI::Option* dialog =
        command->add_flag("--dialog", arguments->dialog, "Choose what to remove in the cleaner's dialog");
    command->add_flag("--all", arguments->all, "Also metadata, model views, notes and the environment");
    AddList(*command, "--only", arguments->only, "Only these operations, separated by commas");
    AddList(*command, "--skip", arguments->skip, "All but these operations, separated by commas");
    AddList(*command, "--keep", arguments->options.keep,
            "Keep nodes, materials and animations whose names match one of these patterns (*, ?, [a-z]), "
            "separated by commas");
    command->add_flag("--keep-named", arguments->options.keepNamed,
                      "Keep nodes, materials and animations that have a name");
    command->add_flag("--keep-extras", arguments->options.keepExtras,
                      "Keep nodes, materials and animations that have extras, and the extras");
    command->add_flag("--blended", arguments->options.blended,
                      "Also remove repeated meshes with blended materials, which changes what is seen");
    command->add_flag("--keep-data", arguments->options.keepData,
                      "Keep data that nothing refers to: meshes, skins, textures, binary data ...");
    command->add_flag("--force", arguments->options.force, kForceHelp);
    command->add_flag("--dry-run", arguments->dryRun, "Write nothing; list what would be removed");
    command->add_flag("--explain", arguments->explain, "List what stays only because something refers to it");
    AddPageOption(*command, arguments->page);
    for (const char* other :
         {"--out-dir", "--all", "--only", "--skip", "--dry-run", "--explain", "--jobs", "--report"}) {
        dialog->excludes(command->get_option(other));
    }
    AddExamples(*command, {{"clean scene.glb out.glb", "Remove what is neither seen nor used."},
                           {"clean --dry-run --explain scene.glb",
                            "List what would be removed, and why the rest stays."},
                           {"clean scene.glb out.glb --keep-named --keep-extras",
                            "Remove only what has neither a name nor extras."},
                           {"clean --out-dir cleaned --jobs 4 --keep-going scenes",
                            "Clean every scene below a folder, even if some fail."}});
    OnRun(*command, session, [&session, arguments] {
        return arguments->dialog ? RunDialog(session, *arguments) : RunClean(session, *arguments);
    });
}

}  // namespace zr
