// SPDX-License-Identifier: MIT
#include <QApplication>
#include <atomic>
#include <memory>
#include <mutex>
#include <thread>

#include "platform/ui/qt/application.h"
#include "platform/ui/qt/controls.h"
#include "platform/ui/qt/dialog.h"
#include "platform/ui/qt/message_queue.h"
#include "platform/ui/qt/tree.h"
#include "platform/ui/user_interface.h"

namespace zrui {
namespace {

class QtInterface final : public platform::UserInterface {
public:
    bool Start(std::string& error) override {
        const std::lock_guard lock(m_startMutex);
        if (IsWindowThread()) return true;
        if (m_thread.load() != std::thread::id()) {
            error = "cannot open a window: windows belong to another thread";
            return false;
        }
        if (!m_startError.empty() || !StartApplication(m_startError)) {
            error = m_startError;
            return false;
        }
        m_queue =
            std::make_unique<MessageQueue>([this](const Message& message) { return Dispatch(message); });
        m_thread = std::this_thread::get_id();
        return true;
    }

    bool RunUntilClosed() override {
        if (!IsWindowThread() || m_table.IsEmpty()) return false;
        QEventLoop loop;
        m_untilClosed = &loop;
        loop.exec();
        m_untilClosed = nullptr;
        return true;
    }

    HWND CreateTree(LPCSTR title, DWORD style, const RECT& xywh, HWND parent) override {
        if (!IsWindowThread()) return nullptr;
        auto window = std::make_unique<TreeWindow>(QString::fromUtf8(title), style, xywh, WidgetOf(parent));
        QWidget& widget = window->Widget();
        const HWND handle = m_table.Add(std::move(window));
        QObject::connect(&widget, &QObject::destroyed, [this, handle] {
            m_table.Remove(handle);
            if (m_untilClosed && m_table.IsEmpty()) m_untilClosed->quit();
        });
        return handle;
    }

    INT_PTR RunDialog(std::span<const std::byte> dialogTemplate, HWND parent, DLGPROC procedure,
                      LPARAM parameter) override {
        const auto parsed = platform::ParseDialogTemplate(dialogTemplate);
        if (!parsed || !IsWindowThread()) return -1;
        DialogWindow* dialog = DialogWindow::Create(m_table, *parsed, WidgetOf(parent), procedure);
        return dialog ? dialog->Run(parameter) : -1;
    }

    BOOL EndDialog(HWND dialog, INT_PTR result) override {
        DialogWindow* window = FindDialog(dialog);
        if (window) window->End(result);
        return window != nullptr;
    }

    LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (IsWindowThread()) return Dispatch({window, message, wParam, lParam});
        return m_thread.load() == std::thread::id() ? 0 : m_queue->Send({window, message, wParam, lParam});
    }

    BOOL Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) override {
        if (m_thread.load() == std::thread::id()) return FALSE;
        m_queue->Post({window, message, wParam, lParam});
        return TRUE;
    }

    HWND GetItem(HWND dialog, int id) override {
        const DialogWindow* window = FindDialog(dialog);
        return window ? window->ControlHandle(id) : nullptr;
    }

    BOOL EnumChildren(HWND parent, WNDENUMPROC callback, LPARAM parameter) override {
        const DialogWindow* window = FindDialog(parent);
        if (!window) return FALSE;
        for (const HWND control : window->Controls()) {
            if (!callback(control, parameter)) break;
        }
        return TRUE;
    }

    BOOL SetCheck(HWND button, UINT check) override {
        Window* window = Find(button);
        return window && zrui::SetCheck(*window, check);
    }

    UINT GetCheck(HWND button) override {
        const Window* window = Find(button);
        return window ? zrui::GetCheck(*window) : BST_UNCHECKED;
    }

    std::u16string GetText(HWND window) override {
        const Window* found = Find(window);
        return found ? found->Text().toStdU16String() : std::u16string();
    }

    BOOL SetText(HWND window, LPCWSTR text) override {
        Window* found = Find(window);
        if (found) found->SetText(text ? QString::fromUtf16(text) : QString());
        return found != nullptr;
    }

    BOOL Show(HWND window, int command) override {
        QWidget* widget = WidgetOf(window);
        if (!widget) return FALSE;
        const bool wasVisible = !widget->isHidden();
        widget->setVisible(command != SW_HIDE);
        return wasVisible;
    }

    BOOL Enable(HWND window, BOOL enable) override {
        QWidget* widget = WidgetOf(window);
        if (!widget) return FALSE;
        const bool wasDisabled = !widget->isEnabled();
        widget->setEnabled(enable != 0);
        return wasDisabled;
    }

    HWND Focus(HWND window) override {
        QWidget* widget = WidgetOf(window);
        if (!widget) return nullptr;
        const Window* previous = m_table.FindWidget(widget->window()->focusWidget());
        widget->setFocus();
        return previous ? previous->Handle() : nullptr;
    }

    BOOL GetRect(HWND window, RECT* rect) override {
        const QWidget* widget = WidgetOf(window);
        if (!widget) return FALSE;
        const QPoint origin = widget->mapToGlobal(QPoint(0, 0));
        *rect = {origin.x(), origin.y(), origin.x() + widget->width(), origin.y() + widget->height()};
        return TRUE;
    }

    BOOL ToClient(HWND window, POINT* point) override {
        const QWidget* widget = WidgetOf(window);
        if (!widget) return FALSE;
        const QPoint local = widget->mapFromGlobal(QPoint(point->x, point->y));
        *point = {local.x(), local.y()};
        return TRUE;
    }

    BOOL Move(HWND window, int x, int y, int width, int height) override {
        QWidget* widget = WidgetOf(window);
        if (widget) widget->setGeometry(x, y, width, height);
        return widget != nullptr;
    }

    BOOL SetProperty(HWND window, LPCSTR name, HANDLE value) override {
        Window* found = Find(window);
        if (found) found->Properties()[name] = value;
        return found != nullptr;
    }

    HANDLE GetProperty(HWND window, LPCSTR name) override {
        Window* found = Find(window);
        if (!found) return nullptr;
        const auto property = found->Properties().find(name);
        return property == found->Properties().end() ? nullptr : property->second;
    }

    HANDLE RemoveProperty(HWND window, LPCSTR name) override {
        const HANDLE value = GetProperty(window, name);
        if (Window* found = Find(window)) found->Properties().erase(name);
        return value;
    }

private:
    bool IsWindowThread() const { return m_thread.load() == std::this_thread::get_id(); }

    Window* Find(HWND handle) const { return IsWindowThread() ? m_table.Find(handle) : nullptr; }

    DialogWindow* FindDialog(HWND handle) const { return dynamic_cast<DialogWindow*>(Find(handle)); }

    QWidget* WidgetOf(HWND handle) const {
        const Window* window = Find(handle);
        return window ? &window->Widget() : nullptr;
    }

    LRESULT Dispatch(const Message& message) {
        Window* window = m_table.Find(message.window);
        return window ? window->OnMessage(message.number, message.wParam, message.lParam) : 0;
    }

    std::mutex m_startMutex;
    std::string m_startError;
    std::atomic<std::thread::id> m_thread{};
    std::unique_ptr<MessageQueue> m_queue;
    WindowTable m_table;
    QEventLoop* m_untilClosed = nullptr;
};

}  // namespace
}  // namespace zrui

extern "C" __attribute__((visibility("default"))) platform::UserInterface* zrui_instance() {
    // Never destroyed: a window may be open when the program ends.
    static zrui::QtInterface& instance = *new zrui::QtInterface;
    return &instance;
}
