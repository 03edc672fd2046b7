// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace zrui {

// Makes the toolkit's application object on the calling thread, unless the program has one. False, with one
// line that says why, when no display can be reached; the program then goes on without windows.
bool StartApplication(std::string& error);

}  // namespace zrui
