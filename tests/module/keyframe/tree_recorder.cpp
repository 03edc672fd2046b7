// SPDX-License-Identifier: MIT
#include "tests/module/keyframe/tree_recorder.h"

#include <gtest/gtest.h>

LRESULT TreeRecorder::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    EXPECT_EQ(message, static_cast<UINT>(TVM_INSERTITEMA));
    const auto& insert = *reinterpret_cast<const TVINSERTSTRUCTA*>(lParam);
    EXPECT_EQ(insert.hInsertAfter, TVI_LAST);
    EXPECT_EQ(insert.item.mask, 0x27u);
    const bool isRoot = insert.hParent == TVI_ROOT;
    m_parents.push_back(isRoot ? 0 : static_cast<int>(reinterpret_cast<std::uintptr_t>(insert.hParent)));
    m_texts.emplace_back(insert.item.pszText);
    return static_cast<LRESULT>(m_texts.size());
}
