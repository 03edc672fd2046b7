// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

namespace zr {

// Prints each line to standard error, after the label.
void PrintNotes(const char* label, const std::vector<std::string>& lines);

}  // namespace zr
