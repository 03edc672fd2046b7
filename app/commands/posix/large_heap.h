// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Asks the system to back the first two gibibytes of the heap (fewer where there are not as many) with huge
// pages and keeps freed memory for reuse. A scene is millions of small objects that are touched once or
// twice, and without this a run spends more time on page faults than on its work. Call first. Does nothing
// with another C library or system, or when memory is short.
void UseLargeHeap();

}  // namespace zr
