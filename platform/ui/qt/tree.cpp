// SPDX-License-Identifier: MIT
#include "platform/ui/qt/tree.h"

#include <QHeaderView>
#include <QScreen>

namespace zrui {

TreeWindow::TreeWindow(const QString& title, DWORD style, const RECT& xywh, QWidget* parent)
    : Window(*new QTreeWidget(parent), 0), m_tree(static_cast<QTreeWidget&>(Widget())) {
    m_tree.setWindowFlag(Qt::Window);
    m_tree.setAttribute(Qt::WA_DeleteOnClose);
    m_tree.setWindowTitle(title);
    m_tree.setRootIsDecorated((style & TVS_LINESATROOT) && (style & TVS_HASBUTTONS));
    m_tree.setUniformRowHeights(true);
    m_tree.setHeaderHidden(true);
    m_tree.header()->setStretchLastSection(false);
    m_tree.header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    const QSize screen = m_tree.screen()->availableSize();
    m_tree.resize(xywh.right == CW_USEDEFAULT ? screen * 0.6 : QSize(xywh.right, xywh.bottom));
    if (xywh.left != CW_USEDEFAULT) m_tree.move(xywh.left, xywh.top);
    m_tree.setVisible((style & WS_VISIBLE) != 0);
}

LRESULT TreeWindow::OnMessage(UINT message, WPARAM, LPARAM lParam) {
    if (message == TVM_INSERTITEMA && lParam) {
        return reinterpret_cast<LRESULT>(Insert(*reinterpret_cast<const TVINSERTSTRUCTA*>(lParam)));
    }
    if (message == WM_CLOSE) m_tree.close();
    return 0;
}

HTREEITEM TreeWindow::Insert(const TVINSERTSTRUCTA& insert) {
    const auto parent = reinterpret_cast<std::uintptr_t>(insert.hParent);
    const bool isRoot = !insert.hParent || insert.hParent == TVI_ROOT;
    if (!isRoot && parent > m_items.size()) return nullptr;
    QTreeWidgetItem* above = isRoot ? m_tree.invisibleRootItem() : m_items[parent - 1];
    auto* item = new QTreeWidgetItem;
    if ((insert.item.mask & TVIF_TEXT) && insert.item.pszText) {
        item->setText(0, QString::fromUtf8(insert.item.pszText));
    }
    above->addChild(item);
    m_items.push_back(item);
    return reinterpret_cast<HTREEITEM>(m_items.size());
}

}  // namespace zrui
