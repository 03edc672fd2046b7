// SPDX-License-Identifier: MIT
#include "app/commands/posix/large_heap.h"

#include <cstdlib>  // defines __GLIBC__

#ifdef __GLIBC__

#include <malloc.h>

namespace zr {

void UseLargeHeap() {
    mallopt(M_TRIM_THRESHOLD, -1);
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TOP_PAD, 1 << 20);
}

}  // namespace zr

#else

namespace zr {

void UseLargeHeap() {}

}  // namespace zr

#endif
