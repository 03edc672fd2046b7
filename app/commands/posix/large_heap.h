// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Keeps freed memory in the heap for reuse, and grows the heap in large steps. A scene is millions of small
// objects that are touched once or twice; faulting in fresh zeroed pages would cost more than the work on
// them. Call before anything else. Does nothing with a C library other than glibc.
//
// Huge pages are not asked for. Where available they save a tenth of the time, but in a virtual machine that
// has returned free memory to its host, each costs many times the faults that it saves.
void UseLargeHeap();

}  // namespace zr
