// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "host/api.h"

namespace vl::mem {

// The host's heap. Storage of every object of the vl::Interface family comes from it and goes back to it.
// allocate returns null when memory runs out; free accepts null. Both may be called on any thread.
KERNIX_API void* allocate(std::size_t size) noexcept;
KERNIX_API void free(void* storage) noexcept;

}  // namespace vl::mem
