// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/reference/command_table.h"

namespace zr {

// Scripts that complete the program's commands, options and their values in a shell.
std::string BashCompletion(const CommandTable& program);
std::string ZshCompletion(const CommandTable& program);
std::string FishCompletion(const CommandTable& program);

}  // namespace zr
