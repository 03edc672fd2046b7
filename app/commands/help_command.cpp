// SPDX-License-Identifier: MIT
#include <CLI/CLI.hpp>

#include <cstdio>
#include <memory>

#include "app/commands/commands.h"
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

}  // namespace

void AddHelpCommand(CLI::App& app, Session& session) {
    CLI::App* command = app.add_subcommand("help", "Print the help of a command");
    const auto name = std::make_shared<std::string>();
    command->add_option("command", *name, "The command; without one, all are listed")->type_name("[COMMAND]");
    command->callback([name, &app, &session] {
        session.SetCommand([name, &app] {
            const CLI::App& chosen = name->empty() ? app : CommandNamed(app, *name);
            // What makes the text ends the process without memory, or leaves a part of the text out.
            EndWithoutMemory();
            // App::help would describe the command that was parsed, which is this one.
            const std::string text =
                chosen.get_formatter()->make_help(&chosen, "", CLI::AppFormatMode::Normal);
            std::fputs(text.c_str(), stdout);
            return 0;
        });
    });
}

}  // namespace zr
