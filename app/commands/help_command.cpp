// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <memory>

#include "app/commands/commands.h"
#include "app/commands/help.h"
#include "app/commands/options.h"
#include "app/commands/report.h"
#include "app/commands/session.h"
#include "app/commands/suggestion.h"
#include "base/memory_watch.h"
#include "base/text.h"

namespace zr {
namespace {

const CLI::App& CommandNamed(const CLI::App& app, const std::string& name) {
    std::vector<std::string> known;
    for (const CLI::App* command : app.get_subcommands({})) {
        if (command->check_name(name)) return *command;
        known.push_back(command->get_name());
    }
    const std::string nearest = NearestWord(name, known);
    throw UsageError(Join("unknown command \"", name, "\"",
                          nearest.empty() ? "" : Join("; did you mean \"", nearest, "\"?")));
}

JsonObject HelpJson(const CLI::App& command) {
    JsonArray commands, operands, groups;
    for (const CLI::App* each : command.get_subcommands({}))
        commands.Append(JsonObject()
                            .Set("name", each->get_name())
                            .Set("group", each->get_group())
                            .Set("text", each->get_description()));
    for (const CLI::Option* option : command.get_options()) {
        if (option->get_positional())
            operands.Append(JsonObject().Set("name", option->get_type_name()).Set("text", TextOf(*option)));
    }
    for (const OptionGroup& group : OptionGroupsOf(command)) {
        JsonArray options;
        for (const CLI::Option* option : group.options)
            options.Append(JsonObject().Set("name", NameAndValue(*option)).Set("text", TextOf(*option)));
        groups.Append(JsonObject().Set("name", group.name).Set("options", options));
    }
    return JsonObject()
        .Set("text", command.get_description())
        .Set("usages", UsagesOf(command))
        .Set("commands", commands)
        .Set("operands", operands)
        .Set("groups", groups)
        .Set("more", command.get_footer());
}

}  // namespace

void AddHelpCommand(CLI::App& app, Session& session) {
    CLI::App* command = app.add_subcommand("help", "Print the help of a command");
    const auto name = std::make_shared<std::string>();
    command->add_option("command", *name, "The command; without one, all are listed")->type_name("[COMMAND]");
    AddExamples(*command, {{"help", "List all commands."},
                           {"help export", "The options of one, by group, with examples."},
                           {"help --json export", "The same for a program."}});
    OnRun(*command, session, [name, &app, &session] {
        const CLI::App& chosen = name->empty() ? app : CommandNamed(app, *name);
        // Formatting help without enough memory would end the process or drop part of the text.
        EndWithoutMemory();
        // App::help would describe the parsed command, that is, help itself.
        Report report;
        report.text = chosen.get_formatter()->make_help(&chosen, "", CLI::AppFormatMode::Normal);
        report.json = HelpJson(chosen);
        report.isAnswer = true;
        PrintReport(session, "help", report);
        return 0;
    });
}

}  // namespace zr
