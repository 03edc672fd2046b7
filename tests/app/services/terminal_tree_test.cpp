// SPDX-License-Identifier: MIT
#include "app/services/terminal_tree.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

HTREEITEM Insert(zr::TerminalTree& tree, HTREEITEM parent, std::string text) {
    TVINSERTSTRUCTA insert{};
    insert.hParent = parent;
    insert.hInsertAfter = TVI_LAST;
    insert.item.mask = TVIF_TEXT;
    insert.item.pszText = text.data();
    return reinterpret_cast<HTREEITEM>(
        SendMessageA(tree.Handle(), TVM_INSERTITEMA, 0, reinterpret_cast<LPARAM>(&insert)));
}

TEST(TerminalTree, DrawsItemsInTreeOrderWhateverTheOrderOfInsertion) {
    zr::TerminalTree tree;
    const HTREEITEM root = Insert(tree, TVI_ROOT, "root");
    const HTREEITEM first = Insert(tree, root, "first");
    const HTREEITEM second = Insert(tree, root, "second");
    Insert(tree, TVI_ROOT, "oth\x1B[2Jer");
    Insert(tree, first, "leaf");
    Insert(tree, second, "last");
    EXPECT_EQ(Insert(tree, reinterpret_cast<HTREEITEM>(std::uintptr_t{50}), "lost"), nullptr);
    EXPECT_EQ(tree.Draw(),
              "root\n"
              "├── first\n"
              "│   └── leaf\n"
              "└── second\n"
              "    └── last\n"
              "oth\\x1B[2Jer\n");
}

TEST(TerminalTree, DeepChainStaysLinear) {
    zr::TerminalTree tree;
    HTREEITEM parent = TVI_ROOT;
    for (int i = 0; i < 100000; ++i) parent = Insert(tree, parent, "x");
    const std::string text = tree.Draw();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100000);
    EXPECT_LT(text.size(), 100000u * 160);
    EXPECT_TRUE(text.ends_with("└── x\n"));
    EXPECT_NE(text.find("\n... 33 "), std::string::npos);
    EXPECT_EQ(text.find("... 32 "), std::string::npos);
}

}  // namespace
