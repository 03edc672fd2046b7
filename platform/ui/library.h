// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/ui/host_windows.h"
#include "platform/ui/user_interface.h"

namespace platform {

// The user interface, its library loaded at the first call; null, with one line that says why in `error`
// if it is given, when the library cannot be loaded. Any thread.
UserInterface* LoadUserInterface(std::string* error = nullptr);

// The control behind a HostControl's handle; null for any other handle.
HostControl* ControlFromHandle(HWND window);

}  // namespace platform
