// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>

namespace zr {

// Lets the system reclaim the memory behind `bytes`, a part of a larger allocation, until they are written
// again. Their content is lost.
void GiveBack(std::span<std::byte> bytes);

}  // namespace zr
