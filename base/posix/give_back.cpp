// SPDX-License-Identifier: MIT
#include "base/give_back.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace zr {

// Whole pages only: partial ones contain other data as well.
void GiveBack(std::span<std::byte> bytes) {
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const auto first = reinterpret_cast<std::uintptr_t>(bytes.data());
    const std::uintptr_t begin = (first + page - 1) / page * page;
    const std::uintptr_t end = (first + bytes.size()) / page * page;
    if (begin < end) madvise(reinterpret_cast<void*>(begin), end - begin, MADV_DONTNEED);
}

}  // namespace zr
