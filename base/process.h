// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace zr {

// The program's own file.
std::filesystem::path ProgramFile();

// A variable of the environment, as UTF-8.
std::optional<std::string> EnvironmentVariable(const char* name);

// Whether standard error is a screen that obeys escape sequences.
bool IsStandardErrorTerminal();

}  // namespace zr
