// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"

namespace zrt {

// Comparators of records by name, for the name table: by characters as unsigned values, or by case-folded
// characters. Every record must have the kind of name that is compared.
template <typename Char>
int CompareNamesExact(vl::Word a, vl::Word b, void* context);
template <typename Char>
int CompareNamesNoCase(vl::Word a, vl::Word b, void* context);

}  // namespace zrt
