// SPDX-License-Identifier: MIT
#include "host/memory.h"

#include <cstdlib>
#include <new>

namespace vl::mem {

// Like operator new, calls the program's new-handler when memory runs out, but returns null instead of
// throwing.
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
