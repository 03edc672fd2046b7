// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"

namespace zrt {

// Order of records by name, for the name table: character by character as unsigned values, or by their
// folded characters. Every record has the name that is compared.
template <typename Char>
int CompareNamesExact(vl::Word a, vl::Word b, void* context);
template <typename Char>
int CompareNamesNoCase(vl::Word a, vl::Word b, void* context);

}  // namespace zrt
