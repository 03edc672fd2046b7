// SPDX-License-Identifier: MIT
#pragma once

#include <QTreeWidget>
#include <vector>

#include "platform/ui/qt/window.h"

namespace zrui {

// A tree view in a window of its own. The toolkit owns the widget and destroys it when the user closes it.
class TreeWindow final : public Window {
public:
    // CW_USEDEFAULT leaves the position to the toolkit, or the size to a default.
    TreeWindow(const QString& title, DWORD style, const RECT& xywh, QWidget* parent);

    QString Text() const override { return m_tree.windowTitle(); }
    void SetText(const QString& text) override { m_tree.setWindowTitle(text); }
    LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) override;

private:
    HTREEITEM Insert(const TVINSERTSTRUCTA& insert);

    QTreeWidget& m_tree;
    std::vector<QTreeWidgetItem*> m_items;  // an item's handle is its position + 1
};

}  // namespace zrui
