// SPDX-License-Identifier: MIT
#pragma once

// Makes allocations of this program fail: those of operator new and vl::mem, in the module, in the core
// library and in the test alike, and those of malloc in what is linked into the program itself. System
// libraries are not affected. Comes with the CMake library zr_failing_memory.
namespace failing_memory {

// Makes the n-th allocation from now on, counted from 1, fail, and only that one.
void FailAt(long n);

// Ends failing. True if the chosen allocation was reached and failed.
bool Stop();

// The number of blocks allocated and not yet freed.
long LiveBlocks();

}  // namespace failing_memory
