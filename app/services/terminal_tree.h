// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/ui/host_windows.h"

namespace zr {

// A tree control that draws itself as text. Handles TVM_INSERTITEMA; every item goes last among its siblings.
//
//   root
//   ├── first
//   │   └── leaf
//   └── second
class TerminalTree final : public platform::HostControl {
public:
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

    struct Item {
        std::string text;
        std::size_t parent = 0;
        std::size_t depth = 0;  // 0: top level
        std::vector<std::size_t> children;
    };

    std::size_t Count() const { return m_items.size(); }
    // number: an item's position in the order of insertion + 1; 0 stands for the invisible root.
    const Item& At(std::size_t number) const { return m_items[number - 1]; }

    // One line per item, in tree order. For an item deeper than kMaxGuides only the innermost levels are
    // drawn, after "..." and the depth, so that the text stays linear in the number of items.
    std::string Draw() const;
    static constexpr std::size_t kMaxGuides = 32;

private:
    const std::vector<std::size_t>& ChildrenOf(std::size_t number) const;
    void DrawItem(std::size_t number, std::string& out) const;

    std::vector<Item> m_items;
    std::vector<std::size_t> m_topLevel;
};

}  // namespace zr
