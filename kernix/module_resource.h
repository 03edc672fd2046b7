// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/api.h"
#include "host/window_types.h"

namespace kernix {

// The content of a resource of a loaded module, whose handle is that of the system's loader; null means the
// running program. Type and name are compared without case. Nothing when the module has no such resource.
KERNIX_API std::optional<std::string> ReadModuleResource(HINSTANCE module, std::string_view type,
                                                         std::string_view name);

}  // namespace kernix
