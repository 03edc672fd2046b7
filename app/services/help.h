// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace zr {

// The file of a page of the help, which stands in share/zrtools/help beside the bin/ of the program.
std::filesystem::path HelpPage(std::string_view page);

// Opens a file in the user's browser. False when the system has no way to open files.
bool OpenInBrowser(const std::filesystem::path& file);

}  // namespace zr
