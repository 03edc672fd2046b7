// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>

#include "host/module_entry.h"
#include "platform/windows.h"

namespace zr {

// The module as the system loaded it. Never unloaded: objects of the module may live as long as the process.
struct ModuleLibrary {
    HINSTANCE instance;
    ModuleEntry entry;
};

// Throws std::runtime_error when the file cannot be loaded or is not a module.
ModuleLibrary LoadModuleLibrary(const std::filesystem::path& file);

}  // namespace zr
