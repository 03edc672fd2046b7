// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_choice.h"
#include "app/operations/animations/animation_edit.h"
#include "host/anim_manager.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// The names of the viewports that play an animation, separated by commas; empty when none does.
std::string ViewportsOf(zr_ANIM_MANAGER& manager, kernix::AnimationModel* animation) {
    std::u16string names(256, u'\0');
    if (!manager.IsAnimationUsed(animation, names.data(), static_cast<int>(names.size()))) return {};
    // A full buffer may have cut the text.
    while (names.back() != u'\0') {
        names.assign(names.size() * 2, u'\0');
        manager.IsAnimationUsed(animation, names.data(), static_cast<int>(names.size()));
    }
    std::string text;
    for (std::size_t at = 0, end; names[at] != u'\0'; at = end + 1) {
        end = names.find(u'\n', at);
        const std::string name = kernix::ToUtf8(std::u16string_view(names).substr(at, end - at));
        text += (text.empty() ? "" : ", ") + (name.empty() ? std::string("(unnamed)") : name);
    }
    return text;
}

void PrintAnimations(Host& host, LoadedScene& loaded) {
    kernix::SceneModel& scene = loaded.Scene();
    const auto manager = host.Create<zr_ANIM_MANAGER>(kTypeAnimManager);
    int index = 0;
    for (kernix::AnimationModel* animation : AnimationsOf(scene)) {
        int keys = 0;
        for (vl::zr::Track* track : animation->Tracks()) keys += track->GetKeyCount();
        const std::string viewports = ViewportsOf(*manager, animation);
        std::printf("%d  %s  %g to %g s, %zu tracks, %d keys, %s%s\n", index++, Quoted(*animation).c_str(),
                    static_cast<double>(scene.GetStartTime(animation)),
                    static_cast<double>(scene.GetEndTime(animation)), animation->Tracks().size(), keys,
                    viewports.empty() ? "unused" : "used by ", viewports.c_str());
    }
    for (const std::string& line : SkippedChannels(loaded, AnimationsOf(loaded.Scene())))
        std::printf("not played  %s\n", line.c_str());
}

}  // namespace

void AddAnimationsCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("animations", "List a scene's animations and who plays them");
    auto file = std::make_shared<std::string>();
    command->add_option("scene", *file, "Scene to read (.gltf, .glb)")->required();
    command->callback([file, &session] {
        session.SetCommand([file, &session] {
            LoadedScene loaded(session.LoadDocument(PathFromUtf8(*file)));
            PrintAnimations(session.GetHost(), loaded);
            return 0;
        });
    });
}

}  // namespace zr
