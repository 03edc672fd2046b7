// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands/animation_report.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/split_animation.h"

namespace zr {
namespace {

struct SplitArguments {
    std::string scene;
    std::string out;
    std::string animation;
    std::vector<float> cuts;
    bool each = false;
    bool force = false;
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
        char text[128];
        std::snprintf(text, sizeof text,
                      "the cut at %g s is not inside the animation, which plays from %g to %g s",
                      static_cast<double>(cut), static_cast<double>(start), static_cast<double>(end));
        throw std::runtime_error(text);
    }
    return cuts;
}

int RunSplit(Session& session, const SplitArguments& arguments) {
    if (arguments.each != arguments.cuts.empty()) throw UsageError("give either --at or --each");
    OutputTarget out(session, arguments.out, EndingOf({}));
    Report report;
    SceneOptions sceneOptions;
    sceneOptions.force = arguments.force;
    LoadedScene loaded(LoadDocument(session, arguments.scene, report), sceneOptions);
    session.ThrowIfStopped();
    kernix::SceneModel& scene = loaded.Scene();
    kernix::AnimationModel& animation = AnimationToSplit(scene, arguments.animation);
    const Animations parts = arguments.each
                                 ? SeparateAnimation(loaded, animation)
                                 : CutAnimation(loaded, animation,
                                                Ascending(arguments.cuts, scene.GetStartTime(&animation),
                                                          scene.GetEndTime(&animation)));
    if (parts.empty()) throw std::runtime_error("animation " + Quoted(animation) + " moves nothing");
    FollowInViewports(scene, {&animation}, parts);
    report.Note("dropped", SkippedChannels(loaded, {&animation}));
    report.Note("kept", RemoveAnimations(session.GetHost(), loaded, {&animation}));
    JsonArray list;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const AnimationSummary summary = Summarize(scene, *parts[i], i);
        report.Line(summary.Text());
        list.Append(summary.Json());
    }
    gltf::Document document = std::move(loaded).WriteBack();
    SaveDocument(session, document, out);
    report.json.Set("input", arguments.scene).Set("output", arguments.out).Set("animations", list);
    PrintReport(session, "split", report);
    return 0;
}

}  // namespace

void AddSplitCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("split", "Cut an animation into several");
    auto arguments = std::make_shared<SplitArguments>();
    AddSceneAndOut(*command, arguments->scene, arguments->out);
    command
        ->add_option("--animation", arguments->animation,
                     "The animation to cut (name, or index), where there are several")
        ->type_name("NAME");
    auto* cuts =
        command->add_option("--at", arguments->cuts, "Times of the cuts, seconds, separated by commas")
            ->type_name("SECONDS,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    CheckRange(*cuts, {-1e6, 1e6});
    command->add_flag("--each", arguments->each, "One animation for each node that it moves");
    command->add_flag("--force", arguments->force, kForceHelp);
    AddExamples(*command,
                {{"split scene.glb out.glb --at 1,2.5", "Three parts of the only animation."},
                 {"split scene.glb out.glb --animation walk --at 0.5", "Two parts of one of several."},
                 {"split scene.glb out.glb --animation walk --each", "A part for each node."}});
    command->callback([arguments, &session] {
        session.SetCommand([arguments, &session] { return RunSplit(session, *arguments); });
    });
}

}  // namespace zr
