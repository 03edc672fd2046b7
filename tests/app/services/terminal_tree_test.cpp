// SPDX-License-Identifier: MIT
#include "app/services/terminal_tree.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/platform/tree_item.h"

namespace {

using platform_test::Insert;

TEST(TerminalTree, DrawsItemsInTreeOrderWhateverTheOrderOfInsertion) {
    zr::TerminalTree tree;
    const HTREEITEM root = Insert(tree.Handle(), TVI_ROOT, "root");
    const HTREEITEM first = Insert(tree.Handle(), root, "first");
    const HTREEITEM second = Insert(tree.Handle(), root, "second");
    Insert(tree.Handle(), TVI_ROOT, "oth\x1B[2Jer");
    Insert(tree.Handle(), first, "leaf");
    Insert(tree.Handle(), second, "last");
    EXPECT_EQ(Insert(tree.Handle(), reinterpret_cast<HTREEITEM>(std::uintptr_t{50}), "lost"), nullptr);
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
    for (int i = 0; i < 100000; ++i) parent = Insert(tree.Handle(), parent, "x");
    const std::string text = tree.Draw();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 100000);
    EXPECT_LT(text.size(), 100000u * 160);
    EXPECT_TRUE(text.ends_with("└── x\n"));
    EXPECT_NE(text.find("\n... 33 "), std::string::npos);
    EXPECT_EQ(text.find("... 32 "), std::string::npos);
}

}  // namespace
