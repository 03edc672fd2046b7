// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zr {

// The path of the running executable.
std::filesystem::path ProgramFile();

// The value of an environment variable that holds a path, in UTF-8 with / as the separator on every system;
// nothing when it is unset.
std::optional<std::string> EnvironmentVariable(const char* name);

// Whether standard error is a terminal that interprets escape sequences. Turns them on where that is needed.
bool IsStandardErrorTerminal();

}  // namespace zr
