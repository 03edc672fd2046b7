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
#include "app/scene/loaded_scene.h"
#include "base/text.h"
#include "kernix/utf.h"

namespace zr {
namespace {

struct Count {
    const char* name;
    std::size_t value;
};

std::vector<Count> CountsOf(kernix::SceneModel& scene) {
    const auto ofKind = [&scene](int kind) {
        return static_cast<std::size_t>(vl::Ref<vl::Array>::AdoptNew(scene.GetObjectsOfKind(kind))->m_nCount);
    };
    return {{"nodes", static_cast<std::size_t>(scene.m_pNodes->m_nCount)},
            {"meshes", ofKind(vl::zr::kKindRenderable)},
            {"lights", ofKind(vl::zr::kKindLight)},
            {"cameras", ofKind(vl::zr::kKindCamera)},
            {"bones", ofKind(vl::zr::kKindBone)},
            {"dummies", ofKind(vl::zr::kKindDummy)},
            {"notes", ofKind(vl::zr::kKindNote)},
            {"selectors", ofKind(vl::zr::kKindSelector)},
            {"materials", static_cast<std::size_t>(scene.m_pMaterials->m_nCount)},
            {"layers", scene.m_pLayers != nullptr ? scene.m_pLayers->GetCount() : 0},
            {"viewports", scene.Viewports().size()}};
}

void AddRow(Report& report, std::string label, std::string_view value) {
    label.resize(12, ' ');
    report.Line(label + std::string(value));
}

Report Describe(Session& session, const std::string& file) {
    Report report;
    LoadedScene loaded(LoadDocument(session, file, report));
    Host& host = session.GetHost();
    report.isAnswer = true;
    const std::string version = kernix::ToUtf8(host.ModuleVersion());
    AddRow(report, "module", Join(kernix::ToUtf8(host.ModuleDescription()), ", version ", version));
    JsonObject counts;
    for (const Count& count : CountsOf(loaded.Scene())) {
        AddRow(report, count.name, std::to_string(count.value));
        counts.Set(count.name, count.value);
    }
    const Animations animations = AnimationsOf(loaded.Scene());
    AddRow(report, "animations", std::to_string(animations.size()));
    JsonArray list;
    for (std::size_t i = 0; i < animations.size(); ++i) {
        const AnimationSummary summary = Summarize(loaded.Scene(), *animations[i], i);
        report.Line("  " + summary.Text());
        list.Append(summary.Json());
    }
    const std::vector<std::string> notPlayed = SkippedChannels(loaded, animations);
    for (const std::string& line : notPlayed) AddRow(report, "not played", line);
    report.json.Set("input", file).Set("module", version).Set("counts", counts).Set("animations", list);
    report.json.Set("notPlayed", notPlayed);
    return report;
}

}  // namespace

void AddInfoCommand(CLI::App& app, Session& session) {
    auto* command = app.add_subcommand("info", "Show what the host sees of a scene");
    auto file = std::make_shared<std::string>();
    AddScene(*command, *file);
    AddExamples(*command, {{"info scene.glb", "Count what the scene holds."},
                           {"info --json scene.glb", "The same for a program."},
                           {"clean scene.glb - | zr info -", "Count what remains after cleaning."}});
    OnRun(*command, session, [file, &session] {
        PrintReport(session, "info", Describe(session, *file));
        return 0;
    });
}

}  // namespace zr
