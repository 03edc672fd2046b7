// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <initializer_list>
#include <string>

#include "app/operations/report/report_page.h"

namespace CLI {
class App;
}

namespace zr {

class Session;

// --report FILE.html
void AddPageOption(
    CLI::App& command, std::string& file,
    const char* description = "Also write a page (.html) that shows both scenes in motion and what was done");
// Checks that the page can be written; an empty file means that none was asked for. Throws UsageError when it
// would overwrite one of the others or when one of these is a standard stream, Error when it cannot be
// written or exists and --no-clobber was given, and std::runtime_error when the program was built without
// pages.
void CheckPageFile(const Session& session, const std::string& file,
                   std::initializer_list<std::string> others);

// The page of a command that made one scene from another: both are read again. Throws gltf::Error.
report::Page PageOf(const Session& session, const std::string& kind, const std::string& before,
                    const std::string& after);
// Writes the page to the file. output: what the command has already written, which the message of a failure
// then says; empty: nothing. Throws std::runtime_error.
void WritePage(const std::string& file, const std::string& output, const std::function<report::Page()>& make);

}  // namespace zr
