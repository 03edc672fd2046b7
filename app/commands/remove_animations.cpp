// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>

#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/animation_edit.h"
#include "base/text.h"
#include "host/anim_manager.h"

namespace zr {
namespace {

struct RemoveArguments {
    std::string scene;
    std::string out;
    AnimationNames animations;
    bool unused = false;
    bool force = false;
};

Animations UnusedAnimations(Host& host, kernix::SceneModel& scene) {
    const auto manager = host.Create<zr_ANIM_MANAGER>(kTypeAnimManager);
    Animations unused;
    for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
        if (!manager->IsAnimationUsed(animation, nullptr, 0)) unused.push_back(animation);
    }
    return unused;
}

int RunRemove(Session& session, const RemoveArguments& arguments) {
    const std::vector<std::string> names = arguments.animations.All();
    if (arguments.unused != names.empty()) throw UsageError("give either --animations or --unused");
    OutputTarget out(session, arguments.out, EndingOf({}));
    Report report;
    SceneOptions sceneOptions;
    sceneOptions.force = arguments.force;
    LoadedScene loaded(LoadDocument(session, arguments.scene, report), sceneOptions);
    Host& host = session.GetHost();
    const Animations chosen =
        arguments.unused ? UnusedAnimations(host, loaded.Scene()) : ChooseAnimations(loaded.Scene(), names);
    const auto held = RemoveAnimations(host, loaded, chosen);
    if (!held.empty() && !arguments.unused) throw std::runtime_error("cannot remove " + held.front());
    SaveScene(std::move(loaded), out, report);
    report.Note("kept", held);
    report.Line("removed " + Counted(chosen.size() - held.size(), "animation"));
    report.json.Set("input", arguments.scene).Set("output", arguments.out);
    report.json.Set("removed", chosen.size() - held.size());
    out.Commit(session);
    PrintReport(session, "remove-animations", report);
    return 0;
}

}  // namespace

void AddRemoveAnimationsCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("remove-animations", "Remove animations from a scene");
    auto arguments = std::make_shared<RemoveArguments>();
    AddSceneAndOut(*command, arguments->scene, arguments->out);
    arguments->animations.AddTo(*command, "Those to remove");
    command->add_flag("--unused", arguments->unused, "Remove those that no viewport plays");
    command->add_flag("--force", arguments->force, kForceHelp);
    AddExamples(
        *command,
        {{"remove-animations scene.glb out.glb --animations walk,2", "By name and by index."},
         {"remove-animations scene.glb out.glb --animation 'Run, slowly'", "One whose name has a comma."},
         {"remove-animations scene.glb out.glb --unused", "Those that no viewport plays."}});
    OnRun(*command, session, [arguments, &session] { return RunRemove(session, *arguments); });
}

}  // namespace zr
