// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "gltf/document.h"

namespace zr::compare {

// The content of an animation sampler, evaluated by the formulas of the format. The curve is constant before
// the first and after the last key.
class KeyCurve {
public:
    // The sampler's data must be readable (HasKeys). Throws gltf::Error.
    KeyCurve(const gltf::Document& document, const gltf::Json& sampler);

    // A linear curve.
    KeyCurve(std::vector<float> times, std::vector<float> values, std::size_t width)
        : m_times(std::move(times)), m_values(std::move(values)), m_width(width) {}

    std::span<const float> Times() const { return m_times; }
    std::size_t KeyCount() const { return m_times.size(); }
    // The values in order; those of cubic curves with their slopes.
    std::span<const float> Values() const { return m_values; }
    bool IsLinear() const { return m_way == Way::kLinear; }
    bool IsCubic() const { return m_way == Way::kCubic; }
    // Numbers per value.
    std::size_t Width() const { return m_width; }
    // Whether the curve has the same value at all times.
    bool IsConstant() const;

    // Writes the value at a time (seconds) to `out`, Width() numbers. isRotation: the values are quaternions,
    // interpolated along the shorter arc; the result has unit length.
    void At(double time, bool isRotation, std::span<double> out) const;

private:
    enum class Way { kStep, kLinear, kCubic };

    // Part of a key: its value (1), or a slope of a cubic curve (0 incoming, 2 outgoing).
    const float* Value(std::size_t key, std::size_t part = 1) const;
    void Cubic(std::size_t key, double fraction, std::span<double> out) const;
    void Linear(std::size_t key, double fraction, bool isRotation, std::span<double> out) const;

    Way m_way = Way::kLinear;
    std::vector<float> m_times;
    std::vector<float> m_values;
    std::size_t m_width = 0;
};

// Whether the sampler's times and values can be read.
bool HasKeys(const gltf::Document& document, const gltf::Json& sampler);

}  // namespace zr::compare
