// SPDX-License-Identifier: MIT
#pragma once

namespace vl {

// Results of interface-level operations. The numbers are part of the binary interface.
enum ResultEnum : int {
    kSuccess = 1,
    kCannotOpen = -8,  // a resource or stream cannot be opened or read, or memory has run out
    kWrongClass = -9,  // an object of another class than required, or an unknown method
};

}  // namespace vl
