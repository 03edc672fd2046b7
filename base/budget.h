// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zr {

// How much memory may be used for what an input describes, bounded by what the input holds and not by what it
// claims: either a stated total, or a multiple of the input's size with a floor; never more than a process
// can hold.
class Budget {
public:
    static constexpr std::uint64_t kFloor = std::uint64_t{256} << 20;
    static constexpr std::uint64_t kForEachByte = 32;

    // `stated` bytes; 0: the multiple of the input.
    explicit Budget(std::uint64_t stated = 0) : m_stated(stated) {}

    std::uint64_t Total() const {
        constexpr std::uint64_t kMost = std::numeric_limits<std::ptrdiff_t>::max();
        return std::min(m_stated != 0 ? m_stated : std::max(kFloor, kForEachByte * m_input), kMost);
    }
    std::uint64_t Left() const { return Total() - std::min(m_taken, Total()); }

    // Counts input that was read, at its own size. False, here and below: not enough is left, and nothing is
    // taken.
    bool AddInput(std::uint64_t bytes) {
        m_input += bytes;
        return Take(bytes);
    }
    bool Take(std::uint64_t bytes) {
        if (bytes > Left()) return false;
        m_taken += bytes;
        return true;
    }

private:
    std::uint64_t m_stated;
    std::uint64_t m_input = 0;
    std::uint64_t m_taken = 0;
};

}  // namespace zr
