// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <type_traits>
#include <vector>

#include "host/stream.h"
#include "kernix/scene/curve.h"

namespace kernix {

// Plain values, byte for byte as in memory: a transfer stream never leaves its process.
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

inline void SaveCurve(vl::Stream& stream, const Curve& curve) {
    WriteValue(stream, curve.interpolation);
    for (const std::vector<float>* numbers : {&curve.times, &curve.values}) {
        WriteValue(stream, static_cast<std::uint64_t>(numbers->size()));
        stream.Write(numbers->data(), numbers->size() * sizeof(float));
    }
}

inline bool LoadCurve(vl::Stream& stream, Curve& curve) {
    const auto load = [&stream](std::vector<float>& numbers) {
        std::uint64_t count = 0;
        if (!ReadValue(stream, count) || count > stream.GetSize() / sizeof(float)) return false;
        numbers.resize(count);
        return stream.Read(numbers.data(), count * sizeof(float)) == count * sizeof(float);
    };
    return ReadValue(stream, curve.interpolation) && load(curve.times) && load(curve.values);
}

}  // namespace kernix
