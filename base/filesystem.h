// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>
#ifdef _WIN32
#include "base/windows/filesystem.h"
#endif

// The standard library's file calls, for names of any length.
namespace zr::fs {

using namespace std::filesystem;

// A form of the name for comparison: equal for names that the system treats as equal.
path Folded(const path& file);

// The names in the folder, in no order.
std::vector<path> NamesIn(const path& folder, std::error_code& failure);

// The files that a name on the command line stands for, sorted. Where shells leave * and ? to programs: the
// matches in its folder. Elsewhere, and when nothing matches: the name itself.
std::vector<path> Expanded(const path& file);

// Whether the file exists and must not be written: its owner or the system forbids it. Where files have
// modes, one without any write permission counts, also for a user who may write everything.
bool IsWriteProtected(const path& file);

// Opens a file for binary reading; the caller closes it. Returns null and sets `errno` on failure.
std::FILE* OpenToRead(const path& file);

}  // namespace zr::fs
