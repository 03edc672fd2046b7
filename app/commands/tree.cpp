// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>
#include <stdexcept>
#include <string>

#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/commands/windows.h"
#include "app/scene/loaded_scene.h"
#include "app/services/terminal_tree.h"
#include "host/serializer.h"
#include "platform/ui/host_windows.h"

namespace zr {
namespace {

constexpr int kNameLength = 255;

struct TreeOptions {
    std::string scene;
    bool window = false;
};

// The hierarchy with everything an export can include, under the scene's own names.
vl::Ref<vl::tk::Serializer> BuildTree(Host& host, LoadedScene& loaded) {
    auto tool = host.Create<vl::tk::Serializer>(kTypeKeyframeTool);
    tool->m_pScene = &loaded.Scene();
    tool->m_dwExportFlags = vl::tk::kExportLights | vl::tk::kExportCameras | vl::tk::kKeepAllNodes |
                            vl::tk::kExportBones | vl::tk::kExportNotes | vl::tk::kAllRenderables |
                            vl::tk::kAllChoices | vl::tk::kAssignNames | vl::tk::kExtractKeys;
    tool->m_dwNameFlags = vl::tk::kNamesKeepCharacters | vl::tk::kNamesLeadingDigit;
    tool->m_nMaxNameLength = kNameLength;
    tool->Process(0);
    return tool;
}

int ShowTree(Session& session, const TreeOptions& options) {
    if (options.window) StartWindows();
    Host& host = session.GetHost();
    Report report;
    LoadedScene loaded(LoadDocument(session, options.scene, report));
    const auto tool = BuildTree(host, loaded);
    if (options.window) {
        if (tool->FillTreeView(nullptr, 0) == 0)
            throw std::runtime_error(options.scene + ": there is nothing to show");
        platform::RunUntilWindowsClosed();
        return 0;
    }
    TerminalTree tree;
    tool->FillTreeView(tree.Handle(), 0);
    report.isAnswer = true;
    report.text = tree.Count() == 0 ? "the scene has no nodes\n" : tree.Draw();
    JsonArray items;
    for (std::size_t number = 1; number <= tree.Count(); ++number) {
        const TerminalTree::Item& item = tree.At(number);
        items.Append(JsonObject().Set("name", item.text).Set("depth", item.depth));
    }
    report.json.Set("input", options.scene).Set("items", items);
    PrintReport(session, "tree", report);
    return 0;
}

}  // namespace

void AddTreeCommand(CLI::App& app, Session& session) {
    auto options = std::make_shared<TreeOptions>();
    CLI::App* command =
        app.add_subcommand("tree", "Show the hierarchy that an export of the default scene would write");
    AddScene(*command, options->scene);
    command->add_flag("--window", options->window, "Open a window instead of printing");
    AddExamples(*command, {{"tree scene.glb", "Draw the hierarchy in the terminal."},
                           {"tree --window scene.glb", "Show it in a window."},
                           {"tree --json scene.glb", "Every item with its depth, parents first."}});
    OnRun(*command, session, [&session, options] { return ShowTree(session, *options); });
}

}  // namespace zr
