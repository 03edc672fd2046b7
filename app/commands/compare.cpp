// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>

#include "app/commands/commands.h"
#include "app/commands/compare_report.h"
#include "app/commands/files.h"
#include "app/commands/html_report.h"
#include "app/commands/options.h"
#include "app/commands/progress.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/commands/tolerance.h"

namespace zr {
namespace {

struct CompareArguments {
    std::string first, second;
    std::string tolerance;
    std::vector<std::string> only;
    std::string page;
};

std::array<bool, compare::kAspects> ChosenAspects(const std::vector<std::string>& only) {
    std::array<bool, compare::kAspects> aspects{};
    for (std::size_t i = 0; i < compare::kAspects; ++i)
        aspects[i] =
            only.empty() || std::find(only.begin(), only.end(), compare::kAspectNames[i]) != only.end();
    return aspects;
}

int RunCompare(Session& session, const CompareArguments& arguments) {
    CheckPageFile(session, arguments.page, {arguments.first, arguments.second});
    compare::CompareOptions options;
    options.aspects = ChosenAspects(arguments.only);
    ReadTolerance(arguments.tolerance, options.tolerance);
    std::optional<Progress> bar("compare");
    options.progress = [&](double done) {
        session.ThrowIfStopped();
        bar->Show(done);
    };
    Report report;
    const gltf::Document first = LoadDocument(session, arguments.first, report);
    const gltf::Document second = LoadDocument(session, arguments.second, report);
    const compare::CompareResult result = compare::CompareScenes(first, second, options);
    bar.reset();
    report.isAnswer = true;
    report.text = CompareReportText(result);
    report.json.Set("first", arguments.first).Set("second", arguments.second);
    report.json.Append(CompareReportJson(result));
    if (!arguments.page.empty()) {
        WritePage(arguments.page, "", [&] {
            report::Page page = PageOf(session, "compare", arguments.first, arguments.second);
            page.result = report.json.Text();
            return page;
        });
    }
    PrintReport(session, "compare", report);
    return result.IsSame() ? 0 : 1;
}

}  // namespace

void AddCompareCommand(CLI::App& app, Session& session) {
    auto* command =
        app.add_subcommand("compare", "Check whether two scenes are the same and where they differ most");
    auto arguments = std::make_shared<CompareArguments>();
    command->add_option("first", arguments->first, "A scene: .gltf, .glb, or - for standard input")
        ->type_name(kSceneType)
        ->required();
    command->add_option("second", arguments->second, "The scene to compare it with")
        ->type_name(kSceneType)
        ->required();
    command
        ->add_option("--tolerance", arguments->tolerance,
                     "Greatest difference that counts as the same, such as 0.1mm,0.05deg; default: a "
                     "millionth of the scene's size, 1e-5 rad, 1e-5")
        ->type_name("LENGTH[,ANGLE[,VALUE]]");
    AddChoices(*command, "--only", arguments->only,
               std::vector<std::string>(compare::kAspectNames.begin(), compare::kAspectNames.end()),
               "Compare only these, separated by commas");
    AddPageOption(*command, arguments->page);
    AddExamples(*command,
                {{"compare scene.glb exported.glb", "Exits with 0 when they are the same, else with 1."},
                 {"compare scene.glb smaller.glb --tolerance 0.1mm,0.05deg", "The same within a tolerance."},
                 {"compare scene.glb clean.glb --only drawn,points",
                  "Check that cleaning changed nothing visible."}});
    OnRun(*command, session, [arguments, &session] { return RunCompare(session, *arguments); });
}

}  // namespace zr
