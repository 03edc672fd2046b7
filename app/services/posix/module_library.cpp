// SPDX-License-Identifier: MIT
#include "app/services/module_library.h"

#include <dlfcn.h>

#include <stdexcept>
#include <string>

namespace zr {

ModuleLibrary LoadModuleLibrary(const std::filesystem::path& file) {
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        throw std::runtime_error(std::string("the module cannot be loaded: ") + dlerror());
    const auto entry = reinterpret_cast<ModuleEntry>(dlsym(library, kModuleEntryName));
    if (entry == nullptr)
        throw std::runtime_error(file.string() + " is not a module: it lacks " + kModuleEntryName);
    return {static_cast<HINSTANCE>(library), entry};
}

}  // namespace zr
