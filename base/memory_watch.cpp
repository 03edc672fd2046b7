// SPDX-License-Identifier: MIT
#include "base/memory_watch.h"

#include <cstdio>
#include <cstdlib>
#include <new>

namespace zr {
namespace {

thread_local bool t_isMissed = false;

}  // namespace

void EndWithoutMemory() {
    std::set_new_handler([] {
        std::fputs("zr: out of memory\n", stderr);
        std::_Exit(EXIT_FAILURE);
    });
}

void NoteMissingMemory() {
    std::set_new_handler([] {
        t_isMissed = true;
        throw std::bad_alloc();
    });
}

bool MissesMemory() noexcept {
    return t_isMissed;
}

void ForgetMissingMemory() noexcept {
    t_isMissed = false;
}

void RequireMemory() {
    if (t_isMissed) throw std::bad_alloc();
}

}  // namespace zr
