// SPDX-License-Identifier: MIT
#include "app/commands/posix/large_heap.h"

#include <cstdlib>  // tells which C library it is

#ifdef __GLIBC__

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <limits>

namespace zr {

void UseLargeHeap() {
    constexpr int kMost = std::numeric_limits<int>::max();
    constexpr int kLeast = 128 << 20;
    constexpr int kUsualStep = 128 << 10;  // of the growth after that
    constexpr std::size_t kMoreThanThereIs = std::size_t{1} << 20;
    mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    void* first = nullptr;
    for (int room = kMost; first == nullptr && room >= kLeast; room /= 2) {
        mallopt(M_TOP_PAD, room);
        first = std::malloc(kMoreThanThereIs);
    }
    mallopt(M_TOP_PAD, kUsualStep);
    const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
    const std::uintptr_t begin = (reinterpret_cast<std::uintptr_t>(first) + page - 1) / page * page;
    const auto end = reinterpret_cast<std::uintptr_t>(sbrk(0));
    // The room may lie elsewhere: another allocator is in use, or the heap could not grow.
    if (begin < end && end - begin < std::uintptr_t{2} * kMost) {
        madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
    }
    std::free(first);
}

}  // namespace zr

#else

namespace zr {

void UseLargeHeap() {}

}  // namespace zr

#endif
