// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Asks the system to back the first gibibyte of the heap by huge pages as it is used, and keeps freed memory
// for reuse. A scene is millions of small objects that are touched once or twice: without this a run spends
// more time on page faults than on its work. Call first; does nothing where the C library or the system is
// of another kind, or where room is short.
void UseLargeHeap();

}  // namespace zr
