// SPDX-License-Identifier: MIT
#include "app/operations/export/choices.h"

#include <string>

#include "host/object.h"

namespace zr {
namespace {

bool IsChosen(const vl::zr::Node* node) {
    if (node->m_pOwner == nullptr || !node->m_pOwner->IsKindOf(vl::zr::kKindSelector)) return true;
    const auto* selector = static_cast<const vl::zr::Selector*>(node->m_pOwner);
    return node ==
           (selector->m_pSelectedChild != nullptr ? selector->m_pSelectedChild : selector->m_pFirstChild);
}

}  // namespace

ExportOptions WithChoicesMade(LoadedScene& loaded, ExportOptions options) {
    // Without any flag there is nothing to export: the tools must see that and refuse.
    if (options.Has(vl::tk::kAllChoices) || options.exportFlags == 0) return options;
    options.exportFlags |= vl::tk::kAllChoices;
    // The tools never export a node with this generator, nor its descendants.
    const std::string leftOut = "zr_detail_markup";
    const NodeLayout& layout = loaded.Parts().layout;
    for (const std::size_t node : layout.order)
        if (!IsChosen(loaded.Node(layout.BaseOf(node)))) loaded.Node(node)->AddGenerator(leftOut);
    return options;
}

}  // namespace zr
