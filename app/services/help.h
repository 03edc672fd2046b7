// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace zr {

// The file of a help page, in share/zrtools/help beside the program's bin/.
std::filesystem::path HelpPage(std::string_view page);

// Opens a file in the user's browser. False when the system has no way to open files.
bool OpenInBrowser(const std::filesystem::path& file);

}  // namespace zr
