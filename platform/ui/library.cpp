// SPDX-License-Identifier: MIT
#include "platform/ui/library.h"

#include <dlfcn.h>

#include <filesystem>

namespace platform {
namespace {

constexpr const char* kLibraryName = "libzrui.so";

struct Loaded {
    UserInterface* interface = nullptr;
    std::string error;
};

// The library is beside the module or program that this code is part of, or in the folder of libraries.
std::filesystem::path FindLibrary() {
    Dl_info info{};
    if (dladdr(reinterpret_cast<const void*>(&LoadUserInterface), &info) == 0) return kLibraryName;
    std::error_code ignored;
    const std::filesystem::path folder = std::filesystem::canonical(info.dli_fname, ignored).parent_path();
    for (const auto& candidate : {folder / kLibraryName, folder / ZR_LIBRARIES_FROM_PROGRAM / kLibraryName}) {
        if (std::filesystem::exists(candidate, ignored)) return candidate;
    }
    return kLibraryName;
}

Loaded Load() {
    // Never unloaded: the toolkit keeps threads and exit handlers.
    void* library = dlopen(FindLibrary().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return {nullptr, std::string("no user interface: ") + dlerror()};
    const auto entry = reinterpret_cast<UserInterfaceEntry>(dlsym(library, kUserInterfaceEntry));
    if (!entry) return {nullptr, std::string("no user interface: ") + dlerror()};
    return {entry(), {}};
}

}  // namespace

UserInterface* LoadUserInterface(std::string* error) {
    static const Loaded loaded = Load();
    if (error) *error = loaded.error;
    return loaded.interface;
}

}  // namespace platform
