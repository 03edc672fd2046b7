// SPDX-License-Identifier: MIT
#include "app/commands/notes.h"

#include <cstdio>

namespace zr {

void PrintNotes(const char* label, const std::vector<std::string>& lines) {
    for (const std::string& line : lines) std::fprintf(stderr, "zr: %s: %s\n", label, line.c_str());
}

}  // namespace zr
