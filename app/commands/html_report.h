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
// For a command that was asked for a page: throws UsageError when this would take the place of one of the
// others or when they are no files, Error when it cannot be written, or exists and may not be replaced, and
// std::runtime_error when the program was built without pages.
void CheckPageFile(const Session& session, const std::string& file,
                   std::initializer_list<std::string> others);

// The page of a command that made one scene from another: both are read again. Throws gltf::Error.
report::Page PageOf(const Session& session, const std::string& kind, const std::string& before,
                    const std::string& after);
// Writes the page to the file. `output` was written before, or is empty, which a failure tells: throws
// std::runtime_error.
void WritePage(const std::string& file, const std::string& output, const std::function<report::Page()>& make);

}  // namespace zr
