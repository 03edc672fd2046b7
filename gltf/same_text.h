// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace zr::gltf {

// Whether two texts of the same size are equal. Compares short ones, such as the names of members, inline; it
// expects them to be equal.
inline bool SameText(const char* a, const char* b, std::size_t size) {
    const auto same = [a, b](auto word, std::size_t at) {
        auto other = word;
        std::memcpy(&word, a + at, sizeof word);
        std::memcpy(&other, b + at, sizeof other);
        return word == other;
    };
    if (size > 16) return std::memcmp(a, b, size) == 0;
    // Two words that may overlap cover any size from one word to two.
    if (size >= 8) return same(std::uint64_t{}, 0) && same(std::uint64_t{}, size - 8);
    if (size >= 4) return same(std::uint32_t{}, 0) && same(std::uint32_t{}, size - 4);
    if (size >= 2) return same(std::uint16_t{}, 0) && same(std::uint16_t{}, size - 2);
    return size == 0 || *a == *b;
}

}  // namespace zr::gltf
