// SPDX-License-Identifier: MIT
#include "base/give_back.h"

namespace zr {

// No effect here: Windows keeps the pages with the process.
void GiveBack(std::span<std::byte>) {}

}  // namespace zr
