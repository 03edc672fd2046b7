// SPDX-License-Identifier: MIT
#include "app/commands/windows.h"

#include <csignal>
#include <stdexcept>
#include <string>

#include "platform/ui/host_windows.h"

namespace zr {

void StartWindows() {
    std::string error;
    if (!platform::StartUserInterface(error)) throw std::runtime_error(error);
    std::signal(SIGINT, SIG_DFL);
}

}  // namespace zr
