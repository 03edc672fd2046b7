// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "host/window_types.h"
#include "kernix/module_strings.h"

namespace zr {

// The language that the user's environment asks for: LC_ALL, LC_MESSAGES or LANG, the first that is set.
std::string UserLanguage();

// Replaces every caption of the dialog and its controls that is "#" and an id by the text with that id.
void LocalizeDialog(const kernix::ModuleStrings& strings, HWND dialog);

}  // namespace zr
