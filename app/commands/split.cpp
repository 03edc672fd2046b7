// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>

#include "app/commands/animation_report.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/clip_names.h"
#include "app/operations/animations/split_animation.h"
#include "base/file.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

struct SplitArguments {
    std::string scene;
    std::string out;
    std::string outDir;
    std::string animation;
    std::vector<float> cuts;
    bool each = false;
    bool force = false;
    std::string page;
};

kernix::AnimationModel& AnimationToSplit(kernix::SceneModel& scene, const std::string& name) {
    const Animations animations = AnimationsOf(scene);
    if (!name.empty()) return *ChooseAnimation(scene, name);
    if (animations.size() == 1) return *animations.front();
    throw std::runtime_error("choose one with --animation: " + Candidates(animations));
}

std::vector<float> Ascending(std::vector<float> cuts, float start, float end) {
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());
    for (const float cut : cuts) {
        if (start < cut && cut < end) continue;
        throw std::runtime_error(Join("the cut at ", Short(double{cut}),
                                      " s is not inside the animation, which plays from ",
                                      Short(double{start}), " to ", Short(double{end}), " s"));
    }
    return cuts;
}

SceneOptions SceneOptionsOf(const SplitArguments& arguments) {
    SceneOptions options;
    options.force = arguments.force;
    return options;
}

// Replaces the animation by its parts and returns these; without --at and --each, returns the chosen
// animation or all, unchanged.
Animations Split(Session& session, LoadedScene& loaded, const SplitArguments& arguments, Report& report) {
    kernix::SceneModel& scene = loaded.Scene();
    if (!arguments.each && arguments.cuts.empty()) {
        return arguments.animation.empty() ? AnimationsOf(scene)
                                           : Animations{ChooseAnimation(scene, arguments.animation)};
    }
    kernix::AnimationModel& animation = AnimationToSplit(scene, arguments.animation);
    Animations parts = arguments.each ? SeparateAnimation(loaded, animation)
                                      : CutAnimation(loaded, animation,
                                                     Ascending(arguments.cuts, scene.GetStartTime(&animation),
                                                               scene.GetEndTime(&animation)));
    if (parts.empty()) throw std::runtime_error("animation " + Quoted(animation) + " moves nothing");
    FollowInViewports(scene, {&animation}, parts);
    report.Note("dropped", SkippedChannels(loaded, {&animation}));
    report.Note("kept", RemoveAnimations(session.GetHost(), loaded, {&animation}));
    return parts;
}

Report SplitInPlace(Session& session, const SplitArguments& arguments) {
    CheckPageFile(session, arguments.page, {arguments.scene, arguments.out});
    OutputTarget out(session, arguments.out, EndingOf({}));
    Report report;
    LoadedScene loaded(LoadDocument(session, arguments.scene, report), SceneOptionsOf(arguments));
    session.ThrowIfStopped();
    const Animations parts = Split(session, loaded, arguments, report);
    JsonArray list;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const AnimationSummary summary = Summarize(loaded.Scene(), *parts[i], i);
        report.Line(summary.Text());
        list.Append(summary.Json());
    }
    SaveScene(std::move(loaded), out, report);
    report.json.Set("input", arguments.scene).Set("output", arguments.out).Set("animations", list);
    out.Commit(session);
    if (!arguments.page.empty()) {
        WritePage(arguments.page, arguments.out,
                  [&] { return PageOf(session, "split", arguments.scene, arguments.out); });
    }
    return report;
}

std::vector<std::string> FilesOf(const Animations& parts, const SplitArguments& arguments) {
    std::vector<std::string> names;
    for (const kernix::AnimationModel* part : parts) names.push_back(kernix::ToUtf8(part->m_name));
    names = ClipNames(names);
    const std::filesystem::path ending = PathFromUtf8(arguments.scene).extension();
    for (std::string& name : names)
        name = PathToUtf8(PathFromUtf8(arguments.outDir) / (PathFromUtf8(name) += ending));
    return names;
}

// Each file holds the scene with one part. The scene is loaded again for each, because the part determines
// which of the document's data remains.
Report SplitIntoFiles(Session& session, const SplitArguments& arguments) {
    Report report;
    JsonArray list;
    std::size_t count = 1;
    for (std::size_t i = 0; i < count; ++i) {
        Report own;
        LoadedScene loaded(LoadDocument(session, arguments.scene, own), SceneOptionsOf(arguments));
        session.ThrowIfStopped();
        const Animations parts = Split(session, loaded, arguments, own);
        if (parts.empty()) throw std::runtime_error(arguments.scene + ": the scene has no animation");
        count = parts.size();
        const std::string file = FilesOf(parts, arguments)[i];
        const AnimationSummary summary = Summarize(loaded.Scene(), *parts[i], i);
        report.Line(Join(file, "  ", summary.Text()));
        list.Append(summary.Json().Set("output", file));
        Animations others = AnimationsOf(loaded.Scene());
        std::erase(others, parts[i]);
        own.Note("kept", RemoveAnimations(session.GetHost(), loaded, others));
        OutputTarget out(session, file, "");
        SaveScene(std::move(loaded), out, own);
        out.Commit(session);
        if (i == 0) report.notes = own.notes;
    }
    report.json.Set("input", arguments.scene).Set("output", arguments.outDir).Set("animations", list);
    return report;
}

int RunSplit(Session& session, const SplitArguments& arguments) {
    const bool isInPlace = arguments.outDir.empty();
    if (arguments.out.empty() == isInPlace) throw UsageError("give either OUT or --out-dir");
    if (!isInPlace && arguments.scene == kStandardStream)
        throw UsageError("--out-dir reads the scene once per part: give a file, not -");
    const bool isCut = !arguments.cuts.empty();
    if (!isInPlace && !arguments.page.empty()) throw UsageError("--report shows one result: give OUT");
    if (isInPlace ? arguments.each == isCut : arguments.each && isCut)
        throw UsageError("give either --at or --each");
    PrintReport(session, "split",
                isInPlace ? SplitInPlace(session, arguments) : SplitIntoFiles(session, arguments));
    return 0;
}

}  // namespace

void AddSplitCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("split", "Cut an animation into several");
    auto arguments = std::make_shared<SplitArguments>();
    AddSceneAndOut(*command, arguments->scene, arguments->out);
    command->get_option("out")->required(false);
    command
        ->add_option("--out-dir", arguments->outDir,
                     "Write one scene per part into this folder, or one per animation when nothing is cut")
        ->type_name(kFolderType);
    command
        ->add_option("--animation", arguments->animation,
                     "The animation to cut (name or index), where there are several")
        ->type_name("NAME");
    auto* cuts =
        command->add_option("--at", arguments->cuts, "Times of the cuts in seconds, separated by commas")
            ->type_name("SECONDS,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    CheckRange(*cuts, {-1e6, 1e6});
    command->add_flag("--each", arguments->each, "One animation for each node that it moves");
    command->add_flag("--force", arguments->force, kForceHelp);
    AddPageOption(*command, arguments->page);
    AddExamples(*command,
                {{"split scene.glb out.glb --at 1,2.5", "Three parts of the only animation."},
                 {"split scene.glb out.glb --animation walk --at 0.5", "Two parts of one of several."},
                 {"split scene.glb out.glb --animation walk --each", "A part for each node."},
                 {"split scene.glb --out-dir clips", "A file for each animation."}});
    OnRun(*command, session, [arguments, &session] { return RunSplit(session, *arguments); });
}

}  // namespace zr
