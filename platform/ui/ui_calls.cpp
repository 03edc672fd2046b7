// SPDX-License-Identifier: MIT
#include <strings.h>

#include <algorithm>

#include "platform/ui/host_windows.h"
#include "platform/ui/library.h"
#include "platform/windows/resource.h"

using platform::HostControl;
using platform::UserInterface;

namespace {

constexpr WORD kDialogResource = 5;

// A handle that is neither null nor a host's control can only come from the loaded library, so this never
// loads it needlessly.
UserInterface* InterfaceOf(HWND window) {
    return window && !platform::ControlFromHandle(window) ? platform::LoadUserInterface() : nullptr;
}

// For the calls that open a window.
UserInterface* StartedInterface() {
    std::string error;
    return platform::StartUserInterface(error) ? platform::LoadUserInterface() : nullptr;
}

}  // namespace

HWND CreateWindowExA(DWORD, LPCSTR windowClass, LPCSTR title, DWORD style, int x, int y, int width,
                     int height, HWND parent, HMENU, HINSTANCE, LPVOID) {
    if (!windowClass || strcasecmp(windowClass, "SysTreeView32") != 0) return nullptr;
    UserInterface* ui = StartedInterface();
    return ui ? ui->CreateTree(title, style, {x, y, width, height}, parent) : nullptr;
}

INT_PTR DialogBoxParamA(HINSTANCE module, LPCSTR dialogResource, HWND parent, DLGPROC procedure,
                        LPARAM parameter) {
    const HRSRC resource = FindResourceA(module, dialogResource, MAKEINTRESOURCEA(kDialogResource));
    UserInterface* ui = resource ? StartedInterface() : nullptr;
    if (!ui) return -1;
    const auto* data = static_cast<const std::byte*>(LockResource(LoadResource(module, resource)));
    return ui->RunDialog({data, SizeofResource(module, resource)}, parent, procedure, parameter);
}

BOOL EndDialog(HWND dialog, INT_PTR result) {
    UserInterface* ui = InterfaceOf(dialog);
    return ui && ui->EndDialog(dialog, result);
}

LRESULT SendMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (HostControl* control = platform::ControlFromHandle(window)) {
        return control->OnMessage(message, wParam, lParam);
    }
    UserInterface* ui = InterfaceOf(window);
    return ui ? ui->Send(window, message, wParam, lParam) : 0;
}

BOOL PostMessageA(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->Post(window, message, wParam, lParam);
}

HWND GetDlgItem(HWND dialog, int id) {
    UserInterface* ui = InterfaceOf(dialog);
    return ui ? ui->GetItem(dialog, id) : nullptr;
}

BOOL EnumChildWindows(HWND parent, WNDENUMPROC callback, LPARAM parameter) {
    UserInterface* ui = InterfaceOf(parent);
    return ui && ui->EnumChildren(parent, callback, parameter);
}

BOOL CheckDlgButton(HWND dialog, int id, UINT check) {
    UserInterface* ui = InterfaceOf(dialog);
    return ui && ui->SetCheck(ui->GetItem(dialog, id), check);
}

UINT IsDlgButtonChecked(HWND dialog, int id) {
    UserInterface* ui = InterfaceOf(dialog);
    return ui ? ui->GetCheck(ui->GetItem(dialog, id)) : BST_UNCHECKED;
}

int GetWindowTextW(HWND window, LPWSTR text, int size) {
    UserInterface* ui = InterfaceOf(window);
    if (!ui || !text || size <= 0) return 0;
    const std::u16string whole = ui->GetText(window);
    const std::size_t length = std::min(whole.size(), static_cast<std::size_t>(size) - 1);
    std::copy_n(whole.begin(), length, text);
    text[length] = 0;
    return static_cast<int>(length);
}

BOOL SetWindowTextW(HWND window, LPCWSTR text) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->SetText(window, text);
}

BOOL SetDlgItemTextW(HWND dialog, int id, LPCWSTR text) {
    return SetWindowTextW(GetDlgItem(dialog, id), text);
}

BOOL ShowWindow(HWND window, int command) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->Show(window, command);
}

BOOL EnableWindow(HWND window, BOOL enable) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->Enable(window, enable);
}

HWND SetFocus(HWND window) {
    UserInterface* ui = InterfaceOf(window);
    return ui ? ui->Focus(window) : nullptr;
}

BOOL GetWindowRect(HWND window, RECT* rect) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->GetRect(window, rect);
}

BOOL ScreenToClient(HWND window, POINT* point) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->ToClient(window, point);
}

BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->Move(window, x, y, width, height);
}

BOOL SetPropA(HWND window, LPCSTR name, HANDLE value) {
    UserInterface* ui = InterfaceOf(window);
    return ui && ui->SetProperty(window, name, value);
}

HANDLE GetPropA(HWND window, LPCSTR name) {
    UserInterface* ui = InterfaceOf(window);
    return ui ? ui->GetProperty(window, name) : nullptr;
}

HANDLE RemovePropA(HWND window, LPCSTR name) {
    UserInterface* ui = InterfaceOf(window);
    return ui ? ui->RemoveProperty(window, name) : nullptr;
}

LONG_PTR GetWindowLongPtrA(HWND window, int index) {
    HostControl* control = platform::ControlFromHandle(window);
    return control && index == 0 ? control->Value() : 0;
}
