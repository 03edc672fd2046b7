// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/api.h"

namespace kernix {

// UTF-8 to UTF-16 and back. A byte or unit that belongs to no character becomes U+FFFD.
KERNIX_API std::u16string ToUtf16(std::string_view text);
KERNIX_API std::string ToUtf8(std::u16string_view text);

// The greatest length of at most size bytes that does not cut a UTF-8 character.
KERNIX_API std::size_t CutUtf8(std::string_view text, std::size_t size);

// Copies as much of a text as the buffer of size characters holds, and terminates it; narrow text is not
// cut inside a character. Does nothing for a null buffer or a size below 1.
KERNIX_API void CopyText(std::string_view text, char* buffer, int size);
KERNIX_API void CopyText(std::u16string_view text, char16_t* buffer, int size);

}  // namespace kernix
