// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "host/api.h"
#include "host/window_types.h"

namespace kernix {

// Reads a resource of a module by type and name; nothing when there is none.
using ResourceReader =
    std::function<std::optional<std::string>(HINSTANCE module, std::string_view type, std::string_view name)>;

// Modules keep their resources the system's way, which the core library does not know: the host application
// says at its start how they are read. Without a reader there are no resources.
KERNIX_API void SetResourceReader(ResourceReader reader);

}  // namespace kernix
