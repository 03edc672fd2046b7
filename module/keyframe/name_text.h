// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

namespace zrt {

// Copies at most size - 1 characters and a terminator. Null, with nothing written, when a pointer is null
// or size is 0.
char* CopyNameBounded(char* destination, const char* source, std::size_t size);

}  // namespace zrt
