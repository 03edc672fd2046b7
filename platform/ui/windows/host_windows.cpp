// SPDX-License-Identifier: MIT
#include "platform/ui/host_windows.h"

namespace platform {
namespace {

constexpr LPCWSTR kClassName = L"zr host control";
constexpr int kControlPlace = sizeof(LONG_PTR);  // in the window's own bytes, after the value

LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* const control = reinterpret_cast<HostControl*>(GetWindowLongPtrW(window, kControlPlace));
    if (control == nullptr || message < WM_USER) return DefWindowProcW(window, message, wParam, lParam);
    return control->OnMessage(message, wParam, lParam);
}

ATOM Register() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = Procedure;
    windowClass.cbWndExtra = kControlPlace + sizeof(LONG_PTR);
    windowClass.lpszClassName = kClassName;
    return RegisterClassW(&windowClass);
}

BOOL CALLBACK TakeVisible(HWND window, LPARAM found) {
    *reinterpret_cast<bool*>(found) = IsWindowVisible(window);
    return !IsWindowVisible(window);
}

bool HasVisibleWindow() {
    bool found = false;
    EnumThreadWindows(GetCurrentThreadId(), TakeVisible, reinterpret_cast<LPARAM>(&found));
    return found;
}

}  // namespace

bool StartUserInterface(std::string&) {
    return true;
}

bool RunUntilWindowsClosed() {
    if (!HasVisibleWindow()) return false;
    MSG message;
    while (HasVisibleWindow() && GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return true;
}

HWND HostControl::Handle() {
    static const ATOM registered = Register();
    if (m_window == nullptr && registered != 0) {
        m_window =
            CreateWindowExW(0, kClassName, L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        SetWindowLongPtrW(m_window, 0, m_value);
        SetWindowLongPtrW(m_window, kControlPlace, reinterpret_cast<LONG_PTR>(this));
    }
    return m_window;
}

HostControl::~HostControl() {
    if (m_window != nullptr) DestroyWindow(m_window);
}

}  // namespace platform
