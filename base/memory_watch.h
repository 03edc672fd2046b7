// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// How the program reacts to a failed allocation. Not every callee can report one: calls of the module return
// incomplete results, and libraries end the process. So failures are observed where they occur, by the
// new-handler.

// From now on a failed allocation ends the process with status 1 and an error line. For start-up, when
// nothing has been done yet.
void EndWithoutMemory();

// From now on a failed allocation throws std::bad_alloc, as by default, and is recorded for its thread.
void NoteMissingMemory();

// Whether an allocation on this thread has failed since ForgetMissingMemory: results may then be incomplete,
// and error messages may name the wrong cause.
bool MissesMemory() noexcept;
void ForgetMissingMemory() noexcept;

// Throws std::bad_alloc when MissesMemory(). To be called just before a result becomes final.
void RequireMemory();

}  // namespace zr
