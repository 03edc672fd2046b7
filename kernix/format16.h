// SPDX-License-Identifier: MIT
#pragma once

#include <cstdarg>
#include <string>

#include "host/api.h"

namespace kernix {

// Formats wide text. Conversions: %d (int), %u (unsigned), %s (zero-terminated UTF-16), %%; any other is
// copied as it is and consumes no argument.
KERNIX_API std::u16string Format16(const char16_t* format, va_list arguments);

}  // namespace kernix
