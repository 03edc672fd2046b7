// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <span>

namespace zr::test {

// A generator of random numbers that bytes may steer: each byte yields one number, so that a fuzzer which
// changes a byte changes one choice. After the last byte, numbers follow from the seed.
class Random {
public:
    using result_type = std::uint32_t;

    explicit Random(unsigned seed, std::span<const std::uint8_t> steering = {})
        : m_steering(steering), m_unsteered(seed) {}

    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return std::numeric_limits<result_type>::max(); }

    result_type operator()() {
        if (m_steering.empty()) return static_cast<result_type>(m_unsteered());
        // Spreads the byte over the whole range; the remainder by a small number still follows it.
        const result_type number = m_steering.front() * 0x01010101U;
        m_steering = m_steering.subspan(1);
        return number;
    }

    // 0 to count - 1.
    std::size_t Pick(std::size_t count) { return operator()() % count; }
    bool Chance() { return Pick(2) == 0; }

private:
    std::span<const std::uint8_t> m_steering;
    std::mt19937 m_unsteered;
};

}  // namespace zr::test
