// SPDX-License-Identifier: MIT
#include "host/memory.h"

#include <cstdlib>
#include <new>

namespace vl::mem {

// As operator new does, with the program's handler for memory that runs out; but null in place of an
// exception.
void* allocate(std::size_t size) noexcept {
    for (;;) {
        if (void* const storage = std::malloc(size)) return storage;
        const std::new_handler handler = std::get_new_handler();
        if (handler == nullptr) return nullptr;
        try {
            handler();
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }
}
void free(void* storage) noexcept {
    std::free(storage);
}

}  // namespace vl::mem
