// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace zr {

class Session;

// The program's command line with every command. It refers to the session, which outlives it.
std::unique_ptr<CLI::App> MakeCommandLine(Session& session);

// Runs the program; its exit status: 0 done, 1 failed, 2 a wrong command line, 130 stopped by the user.
int RunProgram(int argc, const char* const* argv);

}  // namespace zr
