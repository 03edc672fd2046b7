// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"

namespace kernix {

// Removes from the array the pointers for which keep returns false; the others stay in order. Does not
// allocate.
template <typename T, typename Keep>
void KeepIf(vl::Array* array, Keep keep) {
    const vl::ArrayOf<T*> list(array);
    const int count = list.Count();
    int kept = 0;
    for (int i = 0; i < count; ++i) {
        if (keep(list[i])) array->SetAt(kept++, array->GetAt(i));
    }
    for (int i = count; i-- > kept;) array->RemoveAt(i);
}

}  // namespace kernix
