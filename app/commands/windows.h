// SPDX-License-Identifier: MIT
#pragma once

namespace zr {

// Initialises windowing; from then on Ctrl-C terminates at once. Throws std::runtime_error where no window
// can be opened.
void StartWindows();

}  // namespace zr
