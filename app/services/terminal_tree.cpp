// SPDX-License-Identifier: MIT
#include "app/services/terminal_tree.h"

#include <algorithm>

#include "base/text.h"

namespace zr {

LRESULT TerminalTree::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    if (message != TVM_INSERTITEMA || lParam == 0) return 0;
    const auto& insert = *reinterpret_cast<const TVINSERTSTRUCTA*>(lParam);
    Item item;
    if (insert.item.pszText != nullptr) item.text = insert.item.pszText;
    if (insert.hParent != nullptr && insert.hParent != TVI_ROOT) {
        item.parent = reinterpret_cast<std::uintptr_t>(insert.hParent);
        if (item.parent > m_items.size()) return 0;
        item.depth = m_items[item.parent - 1].depth + 1;
    }
    // In this order, so that running out of memory leaves no reference to a missing item.
    const std::size_t parent = item.parent;
    m_items.push_back(std::move(item));
    const std::size_t number = m_items.size();
    (parent == 0 ? m_topLevel : m_items[parent - 1].children).push_back(number);
    return static_cast<LRESULT>(number);
}

const std::vector<std::size_t>& TerminalTree::ChildrenOf(std::size_t number) const {
    return number == 0 ? m_topLevel : m_items[number - 1].children;
}

std::string TerminalTree::Draw() const {
    std::string out;
    std::vector<std::size_t> pending(m_topLevel.rbegin(), m_topLevel.rend());
    while (!pending.empty()) {
        const std::size_t number = pending.back();
        pending.pop_back();
        DrawItem(number, out);
        const std::vector<std::size_t>& children = ChildrenOf(number);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
    return out;
}

void TerminalTree::DrawItem(std::size_t number, std::string& out) const {
    const Item& item = m_items[number - 1];
    std::vector<const char*> guides;  // from the item outwards
    for (std::size_t at = number; m_items[at - 1].depth > 0 && guides.size() < kMaxGuides;
         at = m_items[at - 1].parent) {
        const bool isLast = ChildrenOf(m_items[at - 1].parent).back() == at;
        if (at == number) {
            guides.push_back(isLast ? "└── " : "├── ");
        } else {
            guides.push_back(isLast ? "    " : "│   ");
        }
    }
    if (item.depth > kMaxGuides) out += "... " + std::to_string(item.depth) + " ";
    std::for_each(guides.rbegin(), guides.rend(), [&out](const char* guide) { out += guide; });
    out += Printable(item.text) + "\n";
}

}  // namespace zr
