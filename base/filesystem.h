// SPDX-License-Identifier: MIT
#pragma once

#include <cstdio>
#include <filesystem>
#include <system_error>
#include <vector>
#ifdef _WIN32
#include "base/windows/filesystem.h"
#endif

// The standard library's calls on files, for names of any length.
namespace zr::fs {

using namespace std::filesystem;

// The name in one form for all that the system takes for the same, to compare it by.
path Folded(const path& file);

// The names in the folder, in no order.
std::vector<path> NamesIn(const path& folder, std::error_code& failure);

// The files that a name on the command line stands for, sorted: where shells leave * and ? to programs, those
// of its folder that match; else, and where none does, the name alone.
std::vector<path> Expanded(const path& file);

// For reading bytes; null with `errno` where that cannot be done.
std::FILE* OpenToRead(const path& file);

}  // namespace zr::fs
