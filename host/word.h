// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <cstring>
#include <type_traits>

namespace vl {

// One element of a host array, and the value type of generic parameters: a pointer, an integer, or the
// bits of a float in the low 32 bits with zeros above them.
using Word = std::uintptr_t;
static_assert(sizeof(Word) == sizeof(void*) && sizeof(Word) >= sizeof(std::uint32_t));

template <typename T>
inline Word ToWord(T value) {
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<Word>(value);
    } else if constexpr (std::is_floating_point_v<T>) {
        static_assert(sizeof(T) == sizeof(std::uint32_t),
                      "only single precision fits a word on every system");
        std::uint32_t bits = 0;
        std::memcpy(&bits, &value, sizeof bits);
        return bits;
    } else {
        return static_cast<Word>(value);
    }
}

template <typename T>
inline T FromWord(Word word) {
    if constexpr (std::is_pointer_v<T>) {
        return reinterpret_cast<T>(word);
    } else if constexpr (std::is_floating_point_v<T>) {
        static_assert(sizeof(T) == sizeof(std::uint32_t),
                      "only single precision fits a word on every system");
        const auto bits = static_cast<std::uint32_t>(word);
        T value;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    } else {
        return static_cast<T>(word);
    }
}

}  // namespace vl
