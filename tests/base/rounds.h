// SPDX-License-Identifier: MIT
#pragma once

namespace zr::test {

// Rounds of a test on random or many inputs: all of them, but a quarter where a sanitizer watches each
// access. What it would find it finds in the first rounds; the others look for wrong results, which the
// release build finds as well.
constexpr unsigned Rounds(unsigned all) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return (all + 3) / 4;
#else
    return all;
#endif
}

}  // namespace zr::test
