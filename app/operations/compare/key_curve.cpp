// SPDX-License-Identifier: MIT
#include "app/operations/compare/key_curve.h"

#include <algorithm>
#include <cmath>

#include "gltf/accessor.h"

namespace zr::compare {

using gltf::IndexMember;

KeyCurve::KeyCurve(const gltf::Document& document, const gltf::Json& sampler) {
    if (const gltf::Json* interpolation = sampler.Find("interpolation")) {
        if (interpolation->String() == "STEP") m_way = Way::kStep;
        if (interpolation->String() == "CUBICSPLINE") m_way = Way::kCubic;
    }
    m_times = gltf::ReadFloats(document, IndexMember(sampler, "input"));
    m_values = gltf::ReadFloats(document, IndexMember(sampler, "output"));
    if (!m_times.empty()) m_width = m_values.size() / m_times.size();
    if (m_way == Way::kCubic) m_width /= 3;
}

const float* KeyCurve::Value(std::size_t key, std::size_t part) const {
    return m_values.data() + (m_way == Way::kCubic ? 3 * key + part : key) * m_width;
}

bool KeyCurve::IsConstant() const {
    for (std::size_t key = 0; key < m_times.size(); ++key) {
        if (!std::equal(Value(key), Value(key) + m_width, Value(0))) return false;
        if (m_way != Way::kCubic) continue;
        for (const std::size_t slope : {0, 2})
            for (std::size_t i = 0; i < m_width; ++i)
                if (Value(key, slope)[i] != 0) return false;
    }
    return true;
}

void KeyCurve::At(double time, bool isRotation, std::span<double> out) const {
    const auto after = std::upper_bound(m_times.begin(), m_times.end(), time,
                                        [](double t, float key) { return t < static_cast<double>(key); });
    const auto next = static_cast<std::size_t>(after - m_times.begin());
    if (next == 0 || next == m_times.size() || m_way == Way::kStep) {
        const float* held = Value(next == 0 ? 0 : next - 1);
        std::copy(held, held + m_width, out.begin());
    } else {
        const double start = static_cast<double>(m_times[next - 1]);
        const double fraction = (time - start) / (static_cast<double>(m_times[next]) - start);
        if (m_way == Way::kCubic)
            Cubic(next - 1, fraction, out);
        else
            Linear(next - 1, fraction, isRotation, out);
    }
    if (!isRotation) return;
    double norm = 0;
    for (const double part : out) norm += part * part;
    if (norm > 0)
        for (double& part : out) part /= std::sqrt(norm);
}

void KeyCurve::Cubic(std::size_t key, double u, std::span<double> out) const {
    const double span = static_cast<double>(m_times[key + 1]) - static_cast<double>(m_times[key]);
    const double u2 = u * u, u3 = u2 * u;
    for (std::size_t i = 0; i < m_width; ++i) {
        const double a = static_cast<double>(Value(key)[i]), b = static_cast<double>(Value(key + 1)[i]);
        const double leaving = span * static_cast<double>(Value(key, 2)[i]);
        const double arriving = span * static_cast<double>(Value(key + 1, 0)[i]);
        out[i] = (2 * u3 - 3 * u2 + 1) * a + (u3 - 2 * u2 + u) * leaving + (3 * u2 - 2 * u3) * b +
                 (u3 - u2) * arriving;
    }
}

void KeyCurve::Linear(std::size_t key, double u, bool isRotation, std::span<double> out) const {
    const float* from = Value(key);
    const float* to = Value(key + 1);
    double a = 1 - u, b = u;
    if (isRotation) {
        double cosine = 0;
        for (std::size_t i = 0; i < m_width; ++i)
            cosine += static_cast<double>(from[i]) * static_cast<double>(to[i]);
        const double sign = cosine < 0 ? -1 : 1;
        const double angle = std::acos(std::min(std::abs(cosine), 1.0));
        // Below this angle the arc is a straight line to the precision of a double.
        if (angle > 1e-8) {
            a = std::sin((1 - u) * angle) / std::sin(angle);
            b = std::sin(u * angle) / std::sin(angle);
        }
        b *= sign;
    }
    for (std::size_t i = 0; i < m_width; ++i)
        out[i] = a * static_cast<double>(from[i]) + b * static_cast<double>(to[i]);
}

bool HasKeys(const gltf::Document& document, const gltf::Json& sampler) {
    return gltf::HasData(document, IndexMember(sampler, "input")) &&
           gltf::HasData(document, IndexMember(sampler, "output"));
}

}  // namespace zr::compare
