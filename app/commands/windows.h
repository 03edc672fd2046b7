// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Makes ready to open windows, while which Ctrl-C ends the program at once. Throws std::runtime_error where
// none can be opened.
void StartWindows();

}  // namespace zr
