// SPDX-License-Identifier: MIT
#pragma once

namespace zr::test {

// How many rounds a test on random or many inputs runs: all, or a quarter of them under a sanitizer. What a
// sanitizer finds it finds in the first rounds; the others look for wrong results, which the release build
// finds as well.
constexpr unsigned Rounds(unsigned all) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return (all + 3) / 4;
#else
    return all;
#endif
}

}  // namespace zr::test
