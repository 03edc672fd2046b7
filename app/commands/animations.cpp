// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>

#include "app/commands/animation_report.h"
#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/animations/animation_edit.h"
#include "app/scene/animations_of.h"
#include "base/text.h"
#include "host/anim_manager.h"
#include "kernix/utf.h"

namespace zr {
namespace {

// The names of the viewports that play an animation.
std::vector<std::string> ViewportsOf(zr_ANIM_MANAGER& manager, kernix::AnimationModel* animation) {
    std::u16string text(256, u'\0');
    if (!manager.IsAnimationUsed(animation, text.data(), static_cast<int>(text.size()))) return {};
    // A full buffer means the text may be truncated.
    while (text.back() != u'\0') {
        text.assign(text.size() * 2, u'\0');
        manager.IsAnimationUsed(animation, text.data(), static_cast<int>(text.size()));
    }
    std::vector<std::string> names;
    for (std::size_t at = 0, end; text[at] != u'\0'; at = end + 1) {
        end = text.find(u'\n', at);
        names.push_back(kernix::ToUtf8(std::u16string_view(text).substr(at, end - at)));
    }
    return names;
}

Report ListAnimations(Session& session, const std::string& file) {
    Report report;
    LoadedScene loaded(LoadDocument(session, file, report));
    kernix::SceneModel& scene = loaded.Scene();
    const auto manager = session.GetHost().Create<zr_ANIM_MANAGER>(kTypeAnimManager);
    const Animations animations = AnimationsOf(scene);
    report.isAnswer = true;
    JsonArray list;
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const AnimationSummary summary = Summarize(scene, *animations[i], i);
        const std::vector<std::string> viewports = ViewportsOf(*manager, animations[i]);
        std::string users;
        for (const std::string& viewport : viewports)
            users += (users.empty() ? "used by " : ", ") + (viewport.empty() ? "(unnamed)" : viewport);
        report.Line(Join(i, "  ", summary.Text(), ", ", users.empty() ? "unused" : users));
        list.Append(summary.Json().Set("viewports", viewports));
    }
    const std::vector<std::string> notPlayed = SkippedChannels(loaded, animations);
    for (const std::string& line : notPlayed) report.Line("not played  " + line);
    report.json.Set("input", file).Set("animations", list).Set("notPlayed", notPlayed);
    return report;
}

}  // namespace

void AddAnimationsCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("animations", "List a scene's animations and who plays them");
    auto file = std::make_shared<std::string>();
    AddScene(*command, *file);
    AddExamples(*command, {{"animations scene.glb", "List the animations with their ranges and users."},
                           {"animations --json scene.glb", "The same for a program."},
                           {"remove-animations scene.glb - --unused | zr animations -",
                            "List those that a viewport plays."}});
    OnRun(*command, session, [file, &session] {
        PrintReport(session, "animations", ListAnimations(session, *file));
        return 0;
    });
}

}  // namespace zr
