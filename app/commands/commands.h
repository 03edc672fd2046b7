// SPDX-License-Identifier: MIT
#pragma once

namespace CLI {
class App;
}

namespace zr {

class Session;

// Each adds one subcommand: its options, and what Session::Run then does. Both arguments outlive the run. A
// failure is an exception whose text names the file and the place.
void AddAnimationsCommand(CLI::App& app, Session& session);
void AddMergeCommand(CLI::App& app, Session& session);
void AddRemoveAnimationsCommand(CLI::App& app, Session& session);
void AddSplitCommand(CLI::App& app, Session& session);
void AddExportCommand(CLI::App& app, Session& session);
void AddCleanCommand(CLI::App& app, Session& session);
void AddDescribeCommand(CLI::App& app, Session& session);
void AddInfoCommand(CLI::App& app, Session& session);
void AddTreeCommand(CLI::App& app, Session& session);
void AddTextCommand(CLI::App& app, Session& session);

}  // namespace zr
