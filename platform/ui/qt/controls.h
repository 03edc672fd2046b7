// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "platform/ui/dialog_template.h"
#include "platform/ui/qt/window.h"

namespace zrui {

// Makes the widget of a dialog's control, visible or hidden as its style says, not yet positioned. `clicked`
// is called when the user presses a button. Null for an unsupported class of control.
std::unique_ptr<Window> MakeControl(const platform::DialogControl& control, QWidget& dialog,
                                    std::function<void()> clicked);

// False for a window that is not a check box.
bool SetCheck(Window& window, UINT check);
UINT GetCheck(const Window& window);

}  // namespace zrui
