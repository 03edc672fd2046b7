// SPDX-License-Identifier: MIT
#include "app/services/module_library.h"

#include <bit>
#include <stdexcept>
#include <system_error>

#include "base/file.h"

namespace zr {

ModuleLibrary LoadModuleLibrary(const std::filesystem::path& file) {
    const HINSTANCE library = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (library == nullptr) {
        const std::error_code failure(static_cast<int>(GetLastError()), std::system_category());
        throw std::runtime_error("the module cannot be loaded: " + PathToUtf8(file) + ": " +
                                 failure.default_error_condition().message());
    }
    const FARPROC found = GetProcAddress(library, kModuleEntryName);
    if (found == nullptr)
        throw std::runtime_error(PathToUtf8(file) + " is not a module: it lacks " + kModuleEntryName);
    return {library, std::bit_cast<ModuleEntry>(found)};
}

}  // namespace zr
