// SPDX-License-Identifier: MIT
#include "kernix/module_resource.h"

#include "platform/windows.h"

namespace kernix {

std::optional<std::string> ReadModuleResource(HINSTANCE module, std::string_view type,
                                              std::string_view name) {
    const HRSRC resource = FindResourceA(module, std::string(name).c_str(), std::string(type).c_str());
    const void* data = LockResource(LoadResource(module, resource));
    if (data == nullptr) return std::nullopt;
    return std::string(static_cast<const char*>(data), SizeofResource(module, resource));
}

}  // namespace kernix
