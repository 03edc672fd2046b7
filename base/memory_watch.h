// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// What a failed allocation does to the program. Not everything that misses memory can say so: calls of the
// module answer with less than they were asked for, and libraries end the process. So the allocation itself
// is watched, by the standard library's handler for it.

// From now on a failed allocation ends the process, with status 1 and a line that says why: for the start,
// when nothing has been done yet.
void EndWithoutMemory();

// From now on it throws std::bad_alloc, as ever, and is remembered for its thread.
void NoteMissingMemory();

// Whether an allocation of this thread failed since it was last asked to forget: a result may be less than it
// seems, and a message may name what is not the cause.
bool MissesMemory() noexcept;
void ForgetMissingMemory() noexcept;

// Throws std::bad_alloc when this thread misses memory. For the moment before a result becomes final.
void RequireMemory();

}  // namespace zr
