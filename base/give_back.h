// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

namespace zr {

// Lets the system have the memory of bytes within a greater piece of storage until they are written again.
// They lose their content.
void GiveBack(std::span<std::byte> bytes);

}  // namespace zr
