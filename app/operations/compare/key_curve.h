// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "gltf/document.h"

namespace zr::compare {

// An animation sampler's content, evaluated by the format's own formulas. Before the first key the first
// value holds, after the last key the last one.
class KeyCurve {
public:
    // The sampler's data can be read. Throws gltf::Error.
    KeyCurve(const gltf::Document& document, const gltf::Json& sampler);

    // A linear curve.
    KeyCurve(std::vector<float> times, std::vector<float> values, std::size_t width)
        : m_times(std::move(times)), m_values(std::move(values)), m_width(width) {}

    std::span<const float> Times() const { return m_times; }
    // Value after value; of cubic curves with their slopes.
    std::span<const float> Values() const { return m_values; }
    bool IsLinear() const { return m_way == Way::kLinear; }
    bool IsCubic() const { return m_way == Way::kCubic; }
    // Numbers of one value.
    std::size_t Width() const { return m_width; }
    bool IsConstant() const;

    // The value at a time, seconds; out holds Width() numbers. isRotation: quaternions, which turn along the
    // shorter arc and come out at unit length.
    void At(double time, bool isRotation, std::span<double> out) const;

private:
    enum class Way { kStep, kLinear, kCubic };

    // Of a key: its value, or a slope of a cubic curve (0 incoming, 2 outgoing).
    const float* Value(std::size_t key, std::size_t part = 1) const;
    void Cubic(std::size_t key, double fraction, std::span<double> out) const;
    void Linear(std::size_t key, double fraction, bool isRotation, std::span<double> out) const;

    Way m_way = Way::kLinear;
    std::vector<float> m_times;
    std::vector<float> m_values;
    std::size_t m_width = 0;
};

// Whether keys and values of the sampler are stored so that they can be read.
bool HasKeys(const gltf::Document& document, const gltf::Json& sampler);

}  // namespace zr::compare
