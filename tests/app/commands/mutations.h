// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/base/random.h"

namespace zr::test {

// A document, text or binary container, with one to four things about it changed: a bit, a byte, a number, a
// word between quotes, a piece taken out, doubled or put elsewhere, the end cut off.
std::string Mutated(std::string document, Random& random);

}  // namespace zr::test
