// SPDX-License-Identifier: MIT
#include "app/scene/straighten.h"

#include <algorithm>
#include <array>
#include <limits>

namespace zr {
namespace {

using kernix::Curve;
using kernix::Rotation;

Rotation Orientation(const float* q) {
    return Rotation::From(vl::Quaternion(q[0], q[1], q[2], q[3]));
}

KeyValue ValueOf(const Rotation& rotation) {
    const vl::Quaternion q = rotation.ToQuaternion();
    return KeyValue{q.x, q.y, q.z, q.w};
}

// What a cubic curve shows at a key.
template <std::size_t kWidth>
KeyValue Shown(const float* value) {
    if constexpr (kWidth == 4) {
        return ValueOf(Orientation(value));
    } else {
        return KeyValue{value[0], value[1], value[2]};
    }
}

// Numbers at two times, computed together.
using Pair = double __attribute__((vector_size(16)));

// As kernix::Hermite, at two times and the same to the bit: the weights of both values and slopes.
struct HermiteWeights {
    Pair a, slopeA, b, slopeB;

    HermiteWeights(Pair s, double span) {
        const Pair s2 = s * s;
        const Pair s3 = s2 * s;
        a = 2.0 * s3 - 3.0 * s2 + 1.0;
        slopeA = span * (s3 - 2.0 * s2 + s);
        b = -2.0 * s3 + 3.0 * s2;
        slopeB = span * (s3 - s2);
    }
};

// The piece of a cubic curve between a key and the next.
template <std::size_t kWidth>
class CubicPiece {
public:
    CubicPiece(const Curve& curve, std::size_t key)
        : m_curve(curve), m_from(curve.times[key]), m_span(double{curve.times[key + 1]} - curve.times[key]) {
        const float* a = curve.Value(key);
        const float* b = curve.Value(key + 1);
        for (std::size_t i = 0; i < kWidth; ++i) m_ends[i] = {a[i], (a + kWidth)[i], b[i], (b - kWidth)[i]};
    }

    void At(float timeA, KeyValue& a, float timeB, KeyValue& b) const {
        const Pair share = (Pair{timeA, timeB} - m_from) / m_span;
        const HermiteWeights weights(share, m_span);
        Pair value[kWidth];
        for (std::size_t i = 0; i < kWidth; ++i) {
            const Ends& ends = m_ends[i];
            value[i] = weights.a * ends.a + weights.slopeA * ends.slopeA + weights.b * ends.b +
                       weights.slopeB * ends.slopeB;
        }
        if constexpr (kWidth == 4) {
            Pair length{};
            for (const Pair part : value) length += part * part;
            length = Pair{std::sqrt(length[0]), std::sqrt(length[1])};
            if (!(length[0] > 0 && length[1] > 0)) {
                a = ValueOf(kernix::EvaluateRotation(m_curve, timeA));
                b = ValueOf(kernix::EvaluateRotation(m_curve, timeB));
                return;
            }
            for (Pair& part : value) part /= length;
        }
        a = InLane(value, 0);
        b = InLane(value, 1);
    }

private:
    static KeyValue InLane(const Pair (&value)[kWidth], int lane) {
        const auto part = [&](std::size_t i) { return static_cast<float>(value[i][lane]); };
        if constexpr (kWidth == 4) return KeyValue{part(0), part(1), part(2), part(3)};
        return KeyValue{part(0), part(1), part(2)};
    }

    struct Ends {
        double a, slopeA, b, slopeB;
    };
    const Curve& m_curve;
    double m_from, m_span;
    std::array<Ends, kWidth> m_ends;
};

template <std::size_t kWidth>
Curve StraightenedSteps(const Curve& curve) {
    Curve straight;
    const std::size_t last = curve.times.size() - 1;
    for (std::size_t key = 0; key <= last; ++key) {
        AppendLinearKey<kWidth>(straight, curve.times[key], curve.Value(key));
        if (key == last) break;
        const float held = std::nextafter(curve.times[key + 1], -std::numeric_limits<float>::infinity());
        if (held > curve.times[key]) AppendLinearKey<kWidth>(straight, held, curve.Value(key));
    }
    return straight;
}

template <std::size_t kWidth>
Curve StraightenedCubic(const Curve& curve) {
    const std::size_t last = curve.times.size() - 1;
    float range = 1;
    for (std::size_t key = 0; key <= last; ++key)
        for (std::size_t i = 0; i < kWidth; ++i) range = std::max(range, std::abs(curve.Value(key)[i]));
    Curve straight;
    KeyValue shown = Shown<kWidth>(curve.Value(0));
    for (std::size_t key = 0; key <= last; ++key) {
        AppendLinearKey<kWidth>(straight, curve.times[key], curve.Value(key));
        if (key == last) break;
        const CubicPiece<kWidth> piece(curve, key);
        const KeyValue next = Shown<kWidth>(curve.Value(key + 1));
        AppendStraightPieces<kWidth>(
            straight, curve.times[key], curve.times[key + 1], shown, next, range * kStraightTolerance,
            [&piece](float timeA, KeyValue& a, float timeB, KeyValue& b) { piece.At(timeA, a, timeB, b); });
        shown = next;
    }
    return straight;
}

}  // namespace

template <std::size_t kWidth>
Curve Straightened(const Curve& curve) {
    if (curve.IsEmpty() || curve.interpolation == vl::zr::kInterpolationLinear) return curve;
    return curve.IsCubic() ? StraightenedCubic<kWidth>(curve) : StraightenedSteps<kWidth>(curve);
}

template Curve Straightened<3>(const Curve&);
template Curve Straightened<4>(const Curve&);

}  // namespace zr
