// SPDX-License-Identifier: MIT
#include "kernix/scene/curve.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace kernix {
namespace {

bool SameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0);
}

// The key that alone decides the value at a time, or the first of two and the fraction of the way between.
struct Piece {
    std::size_t key;
    bool isAlone;
    double share;
    double span;  // seconds
};

Piece PieceAt(const Curve& curve, float time) {
    const auto after = std::upper_bound(curve.times.begin(), curve.times.end(), time);
    const auto next = static_cast<std::size_t>(after - curve.times.begin());
    if (next == 0) return {0, true, 0, 0};
    const float from = curve.times[next - 1];
    if (next == curve.times.size() || from == time || curve.interpolation == vl::zr::kInterpolationStep)
        return {next - 1, true, 0, 0};
    const double span = double{curve.times[next]} - from;
    return {next - 1, false, (double{time} - from) / span, span};
}

}  // namespace

bool Curve::operator==(const Curve& other) const {
    return interpolation == other.interpolation && SameBits(times, other.times) &&
           SameBits(values, other.values);
}

void Curve::Retime(float scale, float offset) {
    for (float& time : times) time = time * scale + offset;
    const std::size_t stride = Stride();
    const std::size_t width = Width();
    if (IsCubic() && scale != 0) {
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (i % stride / width != 1) values[i] /= scale;
        }
    }
    if (scale >= 0) return;
    std::reverse(times.begin(), times.end());
    std::vector<float> reversed;
    reversed.reserve(values.size());
    for (std::size_t key = times.size(); key-- > 0;) {
        // The slopes of a cubic key change places.
        for (std::size_t part = stride; part != 0; part -= width) {
            const float* from = values.data() + key * stride + part - width;
            reversed.insert(reversed.end(), from, from + width);
        }
    }
    values = std::move(reversed);
    if (interpolation == vl::zr::kInterpolationStep && times.size() > 1) {
        // A key held its value up to the one that now comes before it.
        std::move(values.begin() + static_cast<std::ptrdiff_t>(stride), values.end(), values.begin());
    }
}

void EvaluateNumbers(const Curve& curve, float time, double* out) {
    const std::size_t width = curve.Width();
    const Piece piece = PieceAt(curve, time);
    const float* a = curve.Value(piece.key);
    if (piece.isAlone) {
        std::copy_n(a, width, out);
        return;
    }
    const float* b = curve.Value(piece.key + 1);
    for (std::size_t i = 0; i < width; ++i) {
        out[i] = curve.IsCubic()
                     ? Hermite(a[i], (a + width)[i], b[i], (b - width)[i], piece.share, piece.span)
                     : a[i] + (double{b[i]} - a[i]) * piece.share;
    }
}

Rotation EvaluateRotation(const Curve& curve, float time) {
    const Piece piece = PieceAt(curve, time);
    const auto at = [](const float* q) { return Rotation::From(vl::Quaternion(q[0], q[1], q[2], q[3])); };
    const float* a = curve.Value(piece.key);
    if (piece.isAlone) return at(a);
    const float* b = curve.Value(piece.key + 1);
    if (curve.IsCubic()) {
        double q[4];
        double length = 0;
        for (std::size_t i = 0; i < 4; ++i) {
            q[i] = Hermite(a[i], (a + 4)[i], b[i], (b - 4)[i], piece.share, piece.span);
            length += q[i] * q[i];
        }
        length = std::sqrt(length);
        if (length > 0) return {q[0] / length, q[1] / length, q[2] / length, q[3] / length};
    }
    return Slerp(piece.share, at(a), at(b));
}

StoredCurve::StoredCurve(Curve curve)
    : m_curve(curve.IsEmpty() ? nullptr : std::make_unique<Curve>(std::move(curve))) {}

std::size_t StoredCurve::KeyCount() const {
    if (m_curve) return m_curve->times.size();
    return m_source != nullptr ? m_source->KeyCount(m_id) : 0;
}

const Curve& StoredCurve::Get() const {
    static const Curve kEmpty;
    if (!m_curve && m_source != nullptr) m_curve = std::make_unique<Curve>(m_source->Read(m_id));
    return m_curve ? *m_curve : kEmpty;
}

Curve& StoredCurve::Edit() {
    Get();
    m_source = nullptr;
    if (!m_curve) m_curve = std::make_unique<Curve>();
    return *m_curve;
}

}  // namespace kernix
