// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

namespace CLI {
class App;
}

namespace zr {

class Session;

// The program's command line with every command. It refers to the session, which must outlive it.
std::unique_ptr<CLI::App> MakeCommandLine(Session& session);

// Runs the program and returns its exit status: 0 success, 1 failure, 2 wrong command line, 130 stopped by
// the user.
int RunProgram(int argc, const char* const* argv);

}  // namespace zr
