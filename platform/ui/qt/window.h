// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "platform/windows/ui.h"

namespace zrui {

// The object behind a window handle: a widget, and what the calls need of it. Used on the window thread only.
class Window {
public:
    // The widget must outlive the window. An automation tool finds a control's widget by its object name,
    // the decimal id.
    Window(QWidget& widget, int id);
    virtual ~Window() = default;
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    virtual QString Text() const { return {}; }
    virtual void SetText(const QString&) {}
    virtual LRESULT OnMessage(UINT, WPARAM, LPARAM) { return 0; }

    QWidget& Widget() const { return m_widget; }
    int Id() const { return m_id; }
    HWND Handle() const { return m_handle; }
    std::map<std::string, HANDLE>& Properties() { return m_properties; }

private:
    friend class WindowTable;

    QWidget& m_widget;
    const int m_id;
    HWND m_handle = nullptr;
    std::map<std::string, HANDLE> m_properties;
};

// The open windows by handle. Handles are even numbers and never reused.
class WindowTable {
public:
    HWND Add(std::unique_ptr<Window> window);
    void Remove(HWND handle);
    Window* Find(HWND handle) const;
    Window* FindWidget(const QWidget* widget) const;
    bool IsEmpty() const { return m_windows.empty(); }

private:
    std::uintptr_t m_last = 0;
    std::unordered_map<std::uintptr_t, std::unique_ptr<Window>> m_windows;
};

}  // namespace zrui
