// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/notes.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/animation_edit.h"
#include "host/anim_manager.h"

namespace zr {
namespace {

struct RemoveArguments {
    std::string scene;
    std::string out;
    std::vector<std::string> animations;
    bool unused = false;
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
    if (arguments.unused != arguments.animations.empty()) {
        throw UsageError("give either --animations or --unused");
    }
    LoadedScene loaded(session.LoadDocument(PathFromUtf8(arguments.scene)));
    Host& host = session.GetHost();
    const Animations chosen = arguments.unused ? UnusedAnimations(host, loaded.Scene())
                                               : ChooseAnimations(loaded.Scene(), arguments.animations);
    const auto held = RemoveAnimations(host, loaded, chosen);
    if (!held.empty() && !arguments.unused) throw std::runtime_error("cannot remove " + held.front());
    PrintNotes("kept", held);
    loaded.WriteBack();
    loaded.Document().Save(PathFromUtf8(arguments.out), [&] { session.ThrowIfStopped(); });
    std::printf("removed %zu animations\n", chosen.size() - held.size());
    return 0;
}

}  // namespace

void AddRemoveAnimationsCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("remove-animations", "Remove animations from a scene");
    auto arguments = std::make_shared<RemoveArguments>();
    command->add_option("scene", arguments->scene, "Scene to read (.gltf, .glb)")->required();
    command->add_option("out", arguments->out, "Scene to write (.gltf, .glb)")->required();
    command->add_option("--animations", arguments->animations, "Names or indices, separated by commas")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_flag("--unused", arguments->unused, "Remove those that no viewport plays");
    command->callback([arguments, &session] {
        session.SetCommand([arguments, &session] { return RunRemove(session, *arguments); });
    });
}

}  // namespace zr
