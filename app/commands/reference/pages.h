// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/commands/reference/command_table.h"

namespace zr {

// The manual page of the program, or of one of its commands ("zr-export"), in roff.
std::string ManualPage(const CommandTable& program, const CommandTable& command);
// The same as a page of the documentation, in Markdown.
std::string DocumentPage(const CommandTable& program, const CommandTable& command);

}  // namespace zr
