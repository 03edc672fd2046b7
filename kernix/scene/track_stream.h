// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <type_traits>

#include "host/stream.h"

namespace kernix {

// Plain values as they lie in memory: a transfer stream lives inside one process.
template <typename T>
void WriteValue(vl::Stream& stream, const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    stream.Write(&value, sizeof value);
}

template <typename T>
bool ReadValue(vl::Stream& stream, T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    return stream.Read(&value, sizeof value) == sizeof value;
}

}  // namespace kernix
