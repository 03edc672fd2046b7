// SPDX-License-Identifier: MIT
#include "app/services/help.h"
#include "platform/windows.h"
// shellapi.h needs windows.h before it.
#include <shellapi.h>

namespace zr {

bool OpenInBrowser(const std::filesystem::path& file) {
    constexpr INT_PTR kLargestFailure = 32;
    const HINSTANCE answer = ShellExecuteW(nullptr, L"open", file.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return reinterpret_cast<INT_PTR>(answer) > kLargestFailure;
}

}  // namespace zr
