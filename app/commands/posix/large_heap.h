// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Keeps freed memory in the heap for reuse, and grows the heap in large steps. A scene is millions of small
// objects that are touched once or twice, and memory from the system costs more than the work on it: it comes
// page by page, cleared. Call first. Does nothing with another C library.
//
// Huge pages are not asked for. Where they are at hand they save a tenth of the time, but in a virtual
// machine whose free memory went back to its host each costs many times the faults that it saves.
void UseLargeHeap();

}  // namespace zr
