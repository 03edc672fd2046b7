// SPDX-License-Identifier: MIT
#include "host/memory.h"

#include <cstdlib>

namespace vl::mem {

void* allocate(std::size_t size) noexcept {
    return std::malloc(size);
}
void free(void* storage) noexcept {
    std::free(storage);
}

}  // namespace vl::mem
