// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

#include "app/commands/animation_report.h"
#include "app/commands/batch.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/bring_animations.h"
#include "app/operations/animations/merge_animations.h"
#include "base/text.h"

namespace zr {
namespace {

struct MergeArguments {
    BatchArguments files;
    std::vector<std::string> from;
    std::string match = "path";
    AnimationNames animations;
    std::vector<std::string> keep;
    bool force = false;
    MergeOptions options;
    std::string page;
};

std::uint32_t KeyFlags(const std::vector<std::string>& keep) {
    std::uint32_t flags = 0;
    for (const std::string& part : keep) {
        flags |= part == "position"   ? ANIM_MERGE_POSITION
                 : part == "rotation" ? ANIM_MERGE_ROTATION
                                      : ANIM_MERGE_SCALE;
    }
    return flags;
}

// Removes the animations of the other scene that were not chosen.
void DropOthers(kernix::SceneModel& scene, const Animations& brought, const Animations& chosen) {
    for (kernix::AnimationModel* animation : brought) {
        if (std::find(chosen.begin(), chosen.end(), animation) == chosen.end())
            scene.DeleteAnimation(animation);
    }
}

class Merger {
public:
    Merger(Session& session, const MergeArguments& arguments)
        : m_session(session), m_arguments(arguments), m_names(arguments.animations.All()) {}

    Report Run(const Task& task, const Advance& advance) const {
        CheckPageFile(m_session, m_arguments.page, {task.input, task.output});
        OutputTarget out(m_session, task.output, EndingOf(m_arguments.files.format));
        Report report;
        SceneOptions sceneOptions;
        sceneOptions.force = m_arguments.force;
        LoadedScene loaded(LoadDocument(m_session, task.input, report), sceneOptions);
        advance(0.5);
        Animations brought;
        if (!m_arguments.from.empty()) brought = Bring(loaded, report);
        const Animations chosen = m_names.empty() ? brought : ChooseAnimations(loaded.Scene(), m_names);
        DropOthers(loaded.Scene(), brought, chosen);
        if (!m_names.empty() && chosen.size() >= 2) {
            Merge(loaded, chosen, report);
        } else {
            ReportAnimations(loaded, "brought", chosen, report);
        }
        SaveScene(std::move(loaded), out, report);
        out.Commit(m_session);
        if (!m_arguments.page.empty()) {
            WritePage(m_arguments.page, task.output,
                      [&] { return PageOf(m_session, "merge", task.input, task.output); });
        }
        return report;
    }

private:
    NodePartners Match(kernix::SceneModel& from, kernix::SceneModel& to) const {
        if (m_arguments.match == "path") return MatchByPath(from, to);
        if (m_arguments.match == "name") return MatchByName(from, to);
        return MatchByPairs(from, to, ReadNodePairs(PathFromUtf8(m_arguments.match)));
    }

    Animations Bring(LoadedScene& loaded, Report& report) const {
        Animations brought;
        for (const std::string& file : m_arguments.from) {
            LoadedScene other(LoadDocument(m_session, file, report));
            const BroughtAnimations result =
                BringAnimations(other, loaded, Match(other.Scene(), loaded.Scene()));
            report.Note("no matching node", result.withoutPartner);
            report.Note("dropped", SkippedChannels(other, AnimationsOf(other.Scene())));
            const bool moves = std::any_of(result.animations.begin(), result.animations.end(),
                                           [](const auto* animation) { return HasKeys(*animation); });
            if (!moves) throw std::runtime_error(file + ": nothing in it moves a node of the scene");
            brought.insert(brought.end(), result.animations.begin(), result.animations.end());
        }
        return brought;
    }

    void Merge(LoadedScene& loaded, const Animations& chosen, Report& report) const {
        MergeOptions options = m_arguments.options;
        if (!m_arguments.keep.empty()) options.keyFlags = KeyFlags(m_arguments.keep);
        const MergeReport merged = MergeAnimations(m_session.GetHost(), loaded, chosen, options);
        report.Note("sources overlap in time", merged.overlapping);
        report.Note("dropped", merged.dropped);
        report.Note("shown before its source plays, as it has no value at rest", merged.restless);
        report.Note("too short to be seen without a gap", merged.unseen);
        report.Note("kept", merged.held);
        ReportAnimations(loaded, "merged", {merged.result}, report);
    }

    static void ReportAnimations(LoadedScene& loaded, const char* what, const Animations& animations,
                                 Report& report) {
        JsonArray list;
        for (std::size_t i = 0; i < animations.size(); ++i) {
            const AnimationSummary summary = Summarize(loaded.Scene(), *animations[i], i);
            report.Line(Join(what, " ", summary.Text()));
            list.Append(summary.Json());
        }
        report.json.Set("animations", list);
    }

    Session& m_session;
    const MergeArguments& m_arguments;
    std::vector<std::string> m_names;
};

int RunMerge(Session& session, const MergeArguments& arguments) {
    if (arguments.from.empty() && arguments.animations.All().size() < 2) {
        throw UsageError("give at least two animations with --animations or --animation");
    }
    if (!arguments.page.empty() && !arguments.files.IsSingle()) throw UsageError("--report takes one scene");
    const Merger merger(session, arguments);
    return RunBatch(session, "merge", arguments.files, PlanTasks(arguments.files, kSceneFiles),
                    [&](const Task& task, const Advance& advance) { return merger.Run(task, advance); });
}

}  // namespace

void AddMergeCommand(CLI::App& app, Session& session) {
    auto* command =
        app.add_subcommand("merge", "Merge animations into one, or bring them from another scene");
    auto arguments = std::make_shared<MergeArguments>();
    AddBatchOptions(*command, arguments->files, kSceneFiles, "SCENE OUT");
    arguments->animations.AddTo(*command, "Animations to merge, in order");
    AddChoices(*command, "--keep", arguments->keep, {"position", "rotation", "scale"},
               "Keys to merge, separated by commas; default: all");
    command->add_flag("--remove-sources", arguments->options.removeSources, "Remove the merged animations");
    command->add_option("--name", arguments->options.name, "Name of the merged animation")->type_name("NAME");
    auto* sequence = command->add_flag("--sequence", arguments->options.inSequence,
                                       "Start each source where the previous one ends");
    AddNumber(*command, "--gap", arguments->options.gap, {0, 1e5}, "SECONDS",
              "Pause between sources in sequence")
        ->needs(sequence);
    auto* from = AddRepeated(*command, "--from", arguments->from,
                             "Bring in animations from this scene; may be repeated; without --animations, "
                             "all of them are brought in and none merged");
    from->type_name(kSceneType);
    command
        ->add_option("--match", arguments->match,
                     "How the other scene's nodes are matched to this scene's: by path, by name, or by a "
                     "JSON file {\"from\": \"to\"} of names or paths")
        ->type_name("path|name|FILE")
        ->capture_default_str()
        ->needs(from);
    command->add_flag("--force", arguments->force, kForceHelp);
    AddPageOption(*command, arguments->page);
    AddExamples(*command, {{"merge scene.glb out.glb --animations walk,run --sequence --gap 0.5",
                            "One animation that walks, waits half a second and runs."},
                           {"merge scene.glb out.glb --animations arms,legs --name all --remove-sources",
                            "Combine two animations into one."},
                           {"merge --out-dir moving --from walk.glb figures",
                            "Every figure of a folder gets the animations of walk.glb."},
                           {"merge figure.glb out.glb --from walk.glb --from run.glb --match name",
                            "For a figure with more nodes than those that walk and run."}});
    OnRun(*command, session, [arguments, &session] { return RunMerge(session, *arguments); });
}

}  // namespace zr
