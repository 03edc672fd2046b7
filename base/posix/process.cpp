// SPDX-License-Identifier: MIT
#include "base/process.h"

#include <unistd.h>

#include <cstdlib>

namespace zr {

std::filesystem::path ProgramFile() {
    return std::filesystem::read_symlink("/proc/self/exe");
}

std::optional<std::string> EnvironmentVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? std::optional<std::string>(value) : std::nullopt;
}

bool IsStandardErrorTerminal() {
    return isatty(STDERR_FILENO) == 1;
}

}  // namespace zr
