// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <type_traits>

#include "app/commands/commands.h"
#include "app/commands/files.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/operations/clean/clean_scene.h"
#include "app/operations/inspect/inspect_document.h"
#include "base/text.h"

namespace zr {
namespace {

struct InspectArguments {
    std::string scene;
    std::string format = "text";
    std::vector<std::string> tables;
    unsigned rows = 40;
};

bool Wants(const InspectArguments& arguments, const std::string& table) {
    return arguments.tables.empty() ||
           std::find(arguments.tables.begin(), arguments.tables.end(), table) != arguments.tables.end();
}

// What a cleaning would remove, found by cleaning the document in memory.
inspect::Table WasteOf(Session& session, gltf::Document& document) {
    inspect::Table table{"waste", {"what", "count", "bytes", "names"}, {}};
    Host& host = session.GetHost();
    const vl::Ref<zr_CLEANER> cleaner = host.Create<zr_CLEANER>(kTypeCleaner);
    EnvironmentService environment(host);
    CleanOptions options;
    for (std::size_t step = 0; step < kCleanSteps; ++step) options.steps[step] = kCleanStepInfo[step].unseen;
    const CleanResult result = CleanDocument(document, *cleaner, environment, session.GetContext(), options,
                                             [&](double) { session.ThrowIfStopped(); });
    for (std::size_t step = 0; step < kCleanSteps; ++step) {
        if (result.steps[step].count == 0) continue;
        std::string names;
        for (const std::string& name : result.steps[step].names)
            names += Join(names.empty() ? "" : ", ", name);
        table.rows.push_back(
            {std::string(kCleanStepInfo[step].name), std::uint64_t{result.steps[step].count}, {}, names});
    }
    for (std::size_t kind = 0; kind < gltf::kKinds; ++kind)
        if (const std::size_t count = result.collected.removed[kind])
            table.rows.push_back(
                {Join("unreferenced ", gltf::kKindInfo[kind].noun), std::uint64_t{count}, {}, {}});
    if (result.collected.bytes > 0)
        table.rows.push_back({std::string("data"), {}, std::uint64_t{result.collected.bytes}, {}});
    return table;
}

JsonArray JsonOf(const inspect::Table& table) {
    JsonArray rows;
    for (const auto& row : table.rows) {
        JsonObject object;
        for (std::size_t column = 0; column < row.size(); ++column)
            std::visit(
                [&](const auto& value) {
                    if constexpr (!std::is_same_v<std::decay_t<decltype(value)>, std::monostate>)
                        object.Set(table.columns[column], value);
                },
                row[column]);
        rows.Append(object);
    }
    return rows;
}

int RunInspect(Session& session, const InspectArguments& arguments) {
    Report report;
    gltf::Document document = LoadDocument(session, arguments.scene, report);
    session.ThrowIfStopped();
    std::vector<inspect::Table> tables = inspect::InspectDocument(document);
    if (Wants(arguments, "waste")) tables.push_back(WasteOf(session, document));
    std::erase_if(tables, [&](const inspect::Table& table) { return !Wants(arguments, table.name); });
    report.isAnswer = true;
    report.text = arguments.format == "csv"  ? inspect::AsCsv(tables)
                  : arguments.format == "md" ? inspect::AsMarkdown(tables)
                                             : inspect::AsText(tables, arguments.rows);
    report.json.Set("input", arguments.scene);
    for (const inspect::Table& table : tables) report.json.Set(table.name, JsonOf(table));
    session.Options().json = session.Options().json || arguments.format == "json";
    PrintReport(session, "inspect", report);
    return 0;
}

}  // namespace

void AddInspectCommand(CLI::App& app, Session& session) {
    auto* command =
        app.add_subcommand("inspect", "List what a scene holds, what it costs and what is wrong with it");
    auto arguments = std::make_shared<InspectArguments>();
    AddScene(*command, arguments->scene);
    AddChoice(*command, "--format", arguments->format, {"text", "md", "csv", "json"},
              "Format of the tables; default: text");
    AddChoices(*command, "--tables", arguments->tables,
               {"summary", "scenes", "nodes", "meshes", "materials", "textures", "skins", "cameras", "lights",
                "animations", "extensions", "bytes", "warnings", "waste"},
               "Only these, separated by commas");
    AddNumber(*command, "--rows", arguments->rows, {1, 1e9}, "N",
              "Greatest number of rows of a table as text; default: 40");
    AddExamples(*command,
                {{"inspect scene.glb", "Everything."},
                 {"inspect scene.glb --tables bytes,waste", "Where its bytes are, and which are wasted."},
                 {"inspect scene.glb --format md", "For a page or a review."}});
    OnRun(*command, session, [arguments, &session] { return RunInspect(session, *arguments); });
}

}  // namespace zr
