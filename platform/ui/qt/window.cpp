// SPDX-License-Identifier: MIT
#include "platform/ui/qt/window.h"

#include <QVariant>

namespace zrui {
namespace {

constexpr const char* kHandleProperty = "zrui.handle";

}  // namespace

Window::Window(QWidget& widget, int id) : m_widget(widget), m_id(id) {
    widget.setObjectName(QString::number(id));
}

HWND WindowTable::Add(std::unique_ptr<Window> window) {
    m_last += 2;
    window->m_handle = reinterpret_cast<HWND>(m_last);
    window->Widget().setProperty(kHandleProperty, static_cast<qulonglong>(m_last));
    const HWND handle = window->m_handle;
    m_windows.emplace(m_last, std::move(window));
    return handle;
}

void WindowTable::Remove(HWND handle) {
    m_windows.erase(reinterpret_cast<std::uintptr_t>(handle));
}

Window* WindowTable::Find(HWND handle) const {
    const auto found = m_windows.find(reinterpret_cast<std::uintptr_t>(handle));
    return found == m_windows.end() ? nullptr : found->second.get();
}

Window* WindowTable::FindWidget(const QWidget* widget) const {
    if (!widget) return nullptr;
    return Find(
        reinterpret_cast<HWND>(static_cast<std::uintptr_t>(widget->property(kHandleProperty).toULongLong())));
}

}  // namespace zrui
