// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/windows/ui.h"

// What a host does with windows that a plug-in has no call for.
namespace platform {

// Initialises windowing on the calling thread. False, with one line that says why, where no window can be
// opened: the user-interface library is not installed, or there is no display.
bool StartUserInterface(std::string& error);

// Serves the open windows until the last one is closed. False when none is open.
bool RunUntilWindowsClosed();

// A control of the host's own: something that answers the messages sent to its handle without being a
// window on the screen. It needs no user-interface library. It is called on the sender's thread.
class HostControl {
public:
    HostControl() = default;
    HostControl(const HostControl&) = delete;
    HostControl& operator=(const HostControl&) = delete;

    // Valid as long as the control lives.
    HWND Handle();

    // The control of such a handle; null for any other.
    static HostControl* FromHandle(HWND window);

    virtual LRESULT OnMessage(UINT message, WPARAM wParam, LPARAM lParam) = 0;

    // The answer of GetWindowLongPtrA.
    virtual LONG_PTR GetValue(int index) = 0;

protected:
    ~HostControl() = default;
};

}  // namespace platform
