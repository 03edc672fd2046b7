// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/notes.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/bring_animations.h"
#include "app/operations/animations/merge_animations.h"

namespace zr {
namespace {

struct MergeArguments {
    std::string scene;
    std::string out;
    std::string from;
    std::vector<std::string> animations;
    std::vector<std::string> keep;
    MergeOptions options;
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

// Those of the other scene that are not chosen do not come along.
void DropOthers(kernix::SceneModel& scene, const Animations& brought, const Animations& chosen) {
    for (kernix::AnimationModel* animation : brought) {
        if (std::find(chosen.begin(), chosen.end(), animation) == chosen.end())
            scene.DeleteAnimation(animation);
    }
}

int RunMerge(Session& session, MergeArguments& arguments) {
    if (arguments.from.empty() && arguments.animations.size() < 2) {
        throw UsageError("--animations names two animations or more");
    }
    LoadedScene loaded(session.LoadDocument(PathFromUtf8(arguments.scene)));
    session.ThrowIfStopped();
    Animations brought;
    if (!arguments.from.empty()) {
        LoadedScene other(session.LoadDocument(PathFromUtf8(arguments.from)));
        BroughtAnimations result = BringAnimations(other, loaded);
        PrintNotes("no partner", result.withoutPartner);
        PrintNotes("dropped", SkippedChannels(other, AnimationsOf(other.Scene())));
        brought = std::move(result.animations);
    }
    const Animations chosen =
        arguments.animations.empty() ? brought : ChooseAnimations(loaded.Scene(), arguments.animations);
    DropOthers(loaded.Scene(), brought, chosen);
    if (!arguments.animations.empty() && chosen.size() >= 2) {
        if (!arguments.keep.empty()) arguments.options.keyFlags = KeyFlags(arguments.keep);
        const MergeReport report = MergeAnimations(session.GetHost(), loaded, chosen, arguments.options);
        PrintNotes("sources overlap in time", report.overlapping);
        PrintNotes("dropped", report.dropped);
        PrintNotes("too short to be seen without a gap", report.unseen);
        PrintNotes("kept", report.held);
    }
    loaded.WriteBack();
    loaded.Document().Save(PathFromUtf8(arguments.out), [&] { session.ThrowIfStopped(); });
    return 0;
}

}  // namespace

void AddMergeCommand(CLI::App& app, Session& session) {
    auto* command =
        app.add_subcommand("merge", "Merge animations into one, or bring them from another scene");
    auto arguments = std::make_shared<MergeArguments>();
    command->add_option("scene", arguments->scene, "Scene to read (.gltf, .glb)")->required();
    command->add_option("out", arguments->out, "Scene to write (.gltf, .glb)")->required();
    command
        ->add_option("--animations", arguments->animations,
                     "Sources by name or index, in order, separated by commas")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_option("--keep", arguments->keep, "Keys to merge: position, rotation, scale (default: all)")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember({"position", "rotation", "scale"}));
    command->add_flag("--remove-sources", arguments->options.removeSources, "Remove the merged animations");
    command->add_option("--name", arguments->options.name, "Name of the merged animation");
    auto* sequence = command->add_flag("--sequence", arguments->options.inSequence,
                                       "Let each source begin where the one before it ends");
    command->add_option("--gap", arguments->options.gap, "Pause between sources, seconds")
        ->check(CLI::NonNegativeNumber)
        ->needs(sequence);
    command->add_option(
        "--from", arguments->from,
        "Bring animations of this scene onto nodes of the same path; without --animations all of "
        "them, and nothing is merged");
    command->callback([arguments, &session] {
        session.SetCommand([arguments, &session] { return RunMerge(session, *arguments); });
    });
}

}  // namespace zr
