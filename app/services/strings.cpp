// SPDX-License-Identifier: MIT
#include "app/services/strings.h"

#include <array>
#include <cstdlib>
#include <optional>
#include <string_view>

#include "platform/windows.h"

namespace zr {
namespace {

using kernix::ModuleStrings;

// Long enough for a caption that refers to any id.
constexpr int kMaxCaption = 16;

void LocalizeCaption(const ModuleStrings& strings, HWND window) {
    std::array<char16_t, kMaxCaption> buffer;
    const int length = GetWindowTextW(window, platform::Wide(buffer.data()), kMaxCaption);
    std::u16string_view caption(buffer.data(), static_cast<std::size_t>(length));
    if (!caption.starts_with(u'#')) return;
    caption.remove_prefix(1);
    const std::optional<int> id = kernix::TakeNumber(caption);
    if (id && caption.empty()) SetWindowTextW(window, platform::Wide(strings.Get(*id)));
}

BOOL CALLBACK LocalizeControl(HWND control, LPARAM strings) {
    LocalizeCaption(*reinterpret_cast<const ModuleStrings*>(strings), control);
    return TRUE;
}

}  // namespace

std::string UserLanguage() {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value && *value) return value;
    }
    return {};
}

void LocalizeDialog(const ModuleStrings& strings, HWND dialog) {
    LocalizeCaption(strings, dialog);
    EnumChildWindows(dialog, LocalizeControl, reinterpret_cast<LPARAM>(&strings));
}

}  // namespace zr
