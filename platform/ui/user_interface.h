// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "platform/windows/ui.h"

namespace platform {

// The window system behind the calls of platform/windows/ui.h, which state the contracts. It is in a library
// of its own, once in a process, however many modules contain the calls.
class UserInterface {
public:
    // Connects to the display; the calling thread becomes the one that owns all windows. False, with one
    // line that says why, when there is no display. Needed once, before the first window.
    virtual bool Start(std::string& error) = 0;

    // Serves the windows until the last one is closed. False when none is open.
    virtual bool RunUntilClosed() = 0;

    virtual HWND CreateTree(LPCSTR title, DWORD style, const RECT& place, HWND parent) = 0;
    virtual INT_PTR RunDialog(std::span<const std::byte> dialogTemplate, HWND parent, DLGPROC procedure,
                              LPARAM parameter) = 0;
    virtual BOOL EndDialog(HWND dialog, INT_PTR result) = 0;

    virtual LRESULT Send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    virtual BOOL Post(HWND window, UINT message, WPARAM wParam, LPARAM lParam) = 0;

    virtual HWND GetItem(HWND dialog, int id) = 0;
    virtual BOOL EnumChildren(HWND parent, WNDENUMPROC callback, LPARAM parameter) = 0;
    virtual BOOL SetCheck(HWND button, UINT check) = 0;
    virtual UINT GetCheck(HWND button) = 0;
    virtual std::u16string GetText(HWND window) = 0;
    virtual BOOL SetText(HWND window, LPCWSTR text) = 0;
    virtual BOOL Show(HWND window, int command) = 0;
    virtual BOOL Enable(HWND window, BOOL enable) = 0;
    virtual HWND Focus(HWND window) = 0;
    virtual BOOL GetRect(HWND window, RECT* rect) = 0;
    virtual BOOL ToClient(HWND window, POINT* point) = 0;
    virtual BOOL Move(HWND window, int x, int y, int width, int height) = 0;

    virtual BOOL SetProperty(HWND window, LPCSTR name, HANDLE value) = 0;
    virtual HANDLE GetProperty(HWND window, LPCSTR name) = 0;
    virtual HANDLE RemoveProperty(HWND window, LPCSTR name) = 0;

protected:
    ~UserInterface() = default;
};

// The one function that the library exports, under this name.
constexpr const char* kUserInterfaceEntry = "zrui_instance";
using UserInterfaceEntry = UserInterface* (*)();

}  // namespace platform
