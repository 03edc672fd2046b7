// SPDX-License-Identifier: MIT
#include "base/process.h"

#include <cwchar>

#include "base/file.h"
#include "base/windows/handle.h"

namespace zr {

std::filesystem::path ProgramFile() {
    std::wstring name(MAX_PATH, L'\0');
    for (;;) {
        const DWORD size = GetModuleFileNameW(nullptr, name.data(), static_cast<DWORD>(name.size()));
        if (size < name.size()) return name.substr(0, size);
        name.resize(name.size() * 2);
    }
}

std::optional<std::string> EnvironmentVariable(const char* name) {
    const wchar_t* const value =
        _wgetenv(std::wstring(name, name + std::char_traits<char>::length(name)).c_str());
    return value != nullptr ? std::optional(PathToUtf8(value)) : std::nullopt;
}

bool IsStandardErrorTerminal() {
    const HANDLE screen = GetStdHandle(STD_ERROR_HANDLE);
    DWORD mode = 0;
    return GetConsoleMode(screen, &mode) && SetConsoleMode(screen, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING);
}

}  // namespace zr
