// SPDX-License-Identifier: MIT
#include "base/give_back.h"

namespace zr {

// Nothing that could be asked for here takes pages out of a program's memory at once.
void GiveBack(std::span<std::byte>) {}

}  // namespace zr
