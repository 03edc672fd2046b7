// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace zr {

// A limit on the memory used for the content of an input. It follows from the size of the input, not from the
// sizes it claims: either a stated total, or a multiple of the bytes read with a floor; never more than a
// process can address.
class Budget {
public:
    static constexpr std::uint64_t kFloor = std::uint64_t{256} << 20;
    static constexpr std::uint64_t kForEachByte = 32;

    // `stated`: the total in bytes; 0 derives it from the input.
    explicit Budget(std::uint64_t stated = 0) : m_stated(stated) {}

    std::uint64_t Total() const {
        constexpr std::uint64_t kMost = std::numeric_limits<std::ptrdiff_t>::max();
        return std::min(m_stated != 0 ? m_stated : std::max(kFloor, kForEachByte * m_input), kMost);
    }
    std::uint64_t Left() const { return Total() - std::min(m_taken, Total()); }

    // Charges input that was read, at its own size. Like Take, returns false, and charges nothing, when too
    // little is left.
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
