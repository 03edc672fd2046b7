// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/windows.h"

// What a host needs of windows beyond the calls of a plug-in.
namespace platform {

// Initialises windowing on the calling thread. False, with one line that says why, where no window can be
// opened: the user-interface library is not installed, or there is no display.
bool StartUserInterface(std::string& error);

// Serves the open windows until the last one is closed. False when none is open.
bool RunUntilWindowsClosed();

// A control of the host's own: it handles the messages sent to its handle without being a window on the
// screen. It needs no user-interface library. It is used on one thread.
class HostControl {
public:
    // value: the result of GetWindowLongPtrA for index 0.
    explicit HostControl(LONG_PTR value = 0) : m_value(value) {}
    HostControl(const HostControl&) = delete;
    HostControl& operator=(const HostControl&) = delete;

    // Valid as long as the control lives.
    HWND Handle();

    // Handles messages from WM_USER on and returns their results.
    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;

    LONG_PTR Value() const { return m_value; }

protected:
    // NOLINTNEXTLINE(performance-trivially-destructible): on Windows it destroys the window.
    ~HostControl();

private:
    LONG_PTR m_value;
    HWND m_window = nullptr;  // null until Handle is called
};

}  // namespace platform
