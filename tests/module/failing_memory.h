// SPDX-License-Identifier: MIT
#pragma once

// Lets allocations of this program fail: those of operator new and of vl::mem, in the module, in the core
// library and in the test alike, and those of malloc in what is linked into the program itself. The system's
// libraries below them keep theirs. Comes with the CMake library zr_failing_memory.
namespace failing_memory {

// The n-th allocation from now on fails, counted from 1; only this one.
void FailAt(long n);

// No allocation fails any more. True when the one that was asked for was reached and failed.
bool Stop();

// Blocks that were allocated and not freed so far.
long LiveBlocks();

}  // namespace failing_memory
