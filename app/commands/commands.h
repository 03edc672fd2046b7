// SPDX-License-Identifier: MIT
#pragma once

namespace CLI {
class App;
}

namespace zr {

// The help of --force, which several commands share.
inline constexpr const char* kForceHelp = "Remove even what an unknown extension could refer to";

class Session;

// Each adds one subcommand: its options and what Session::Run does. Both arguments must outlive the run. A
// failure is an exception whose text names the file and the place.
void AddAnimationsCommand(CLI::App& app, Session& session);
void AddCompareCommand(CLI::App& app, Session& session);
void AddInspectCommand(CLI::App& app, Session& session);
void AddMergeCommand(CLI::App& app, Session& session);
void AddReduceCommand(CLI::App& app, Session& session);
void AddRemoveAnimationsCommand(CLI::App& app, Session& session);
void AddSplitCommand(CLI::App& app, Session& session);
void AddExportCommand(CLI::App& app, Session& session);
void AddCleanCommand(CLI::App& app, Session& session);
void AddDescribeCommand(CLI::App& app, Session& session);
void AddFontsCommand(CLI::App& app, Session& session);
void AddHelpCommand(CLI::App& app, Session& session);
void AddInfoCommand(CLI::App& app, Session& session);
void AddTreeCommand(CLI::App& app, Session& session);
void AddTextCommand(CLI::App& app, Session& session);

// Every command, in the order and under the headings in which help lists them.
struct CommandEntry {
    const char* group;
    void (*add)(CLI::App& app, Session& session);
};
inline constexpr CommandEntry kCommands[] = {
    {"Prepare a scene", AddExportCommand},
    {"Prepare a scene", AddCleanCommand},
    {"Look at a scene", AddInfoCommand},
    {"Look at a scene", AddTreeCommand},
    {"Look at a scene", AddInspectCommand},
    {"Look at a scene", AddCompareCommand},
    {"Look at a scene", AddAnimationsCommand},
    {"Change animations", AddMergeCommand},
    {"Change animations", AddSplitCommand},
    {"Change animations", AddRemoveAnimationsCommand},
    {"Change animations", AddReduceCommand},
    {"Draw", AddTextCommand},
    {"Draw", AddFontsCommand},
    {"About the program", AddDescribeCommand},
    {"About the program", AddHelpCommand},
};

}  // namespace zr
