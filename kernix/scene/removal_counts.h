// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace kernix {

// How many elements before a given one were removed from a list that only grows at its end: a tree of partial
// sums, each call in logarithmic time (P. M. Fenwick, "A new data structure for cumulative frequency tables",
// 1994).
class RemovalCounts {
public:
    void Append() {
        const std::size_t count = m_sums.size() + 1;
        m_sums.push_back(Before(count - 1) - Before(count - LowestBit(count)));
    }
    // Elements are numbered in the order in which they were appended, and removed only once.
    void Remove(std::size_t element) {
        for (std::size_t i = element + 1; i <= m_sums.size(); i += LowestBit(i)) ++m_sums[i - 1];
    }
    std::uint32_t Before(std::size_t element) const {
        std::uint32_t sum = 0;
        for (std::size_t i = element; i != 0; i -= LowestBit(i)) sum += m_sums[i - 1];
        return sum;
    }

private:
    static std::size_t LowestBit(std::size_t i) { return i & (~i + 1); }

    std::vector<std::uint32_t> m_sums;  // at i - 1: of the LowestBit(i) elements that end before element i
};

}  // namespace kernix
