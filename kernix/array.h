// SPDX-License-Identifier: MIT
#pragma once

#include "host/api.h"
#include "host/array.h"

namespace kernix {

// A new, empty array with count 1; null when memory runs out. With a comparator, which is given the context,
// FindSorted works on it.
KERNIX_API vl::Array* CreateArray();
KERNIX_API vl::Array* CreateSortedArray(vl::ArrayComparator comparator, void* context);

}  // namespace kernix
