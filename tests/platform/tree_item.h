// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/windows.h"

namespace platform_test {

// Adds an item after its siblings; null where there is no such parent.
inline HTREEITEM Insert(HWND tree, HTREEITEM parent, std::string text) {
    TVINSERTSTRUCTA insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = text.data();
    return reinterpret_cast<HTREEITEM>(
        SendMessageA(tree, TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
}

}  // namespace platform_test
