// SPDX-License-Identifier: MIT
#include "platform/ui/host_windows.h"

#include "platform/ui/library.h"

namespace platform {
namespace {

// Handles of windows are even numbers; that of a control is its address, which is even too, made odd.
constexpr std::uintptr_t kControlMark = 1;

}  // namespace

bool StartUserInterface(std::string& error) {
    UserInterface* ui = LoadUserInterface(&error);
    return ui && ui->Start(error);
}

bool RunUntilWindowsClosed() {
    UserInterface* ui = LoadUserInterface();
    return ui && ui->RunUntilClosed();
}

HWND HostControl::Handle() {
    m_window = reinterpret_cast<HWND>(reinterpret_cast<std::uintptr_t>(this) | kControlMark);
    return m_window;
}

HostControl::~HostControl() = default;

HostControl* ControlFromHandle(HWND window) {
    const auto value = reinterpret_cast<std::uintptr_t>(window);
    return value & kControlMark ? reinterpret_cast<HostControl*>(value & ~kControlMark) : nullptr;
}

}  // namespace platform
