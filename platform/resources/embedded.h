// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

#include "platform/windows/base.h"

namespace platform {

// The resource file that a loaded module carries as an ELF note of the owner "zrtools.rsrc"; empty when it
// carries none. `module` is a handle of dlopen, or null for the running program.
std::span<const std::byte> EmbeddedResources(HMODULE module);

}  // namespace platform
