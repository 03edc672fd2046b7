// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "tests/base/random.h"

namespace zr::test {

// A document, text or binary container, with one to four mutations: a bit, a byte, a number or a quoted word
// changed, a piece removed, doubled or moved, the end cut off.
std::string Mutated(std::string document, Random& random);

}  // namespace zr::test
