// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/kinds.h"
#include "kernix/math/rotation.h"

namespace kernix {

inline constexpr int kKeyTypes[] = {vl::zr::kKeyPosition, vl::zr::kKeyRotation, vl::zr::kKeyScale};

// Packed keys: their times in seconds, ascending, and for each key an equal number of values. A cubic curve
// has three times as many: incoming slopes, values and outgoing slopes (units per second), key by key.
struct KERNIX_API Curve {
    vl::zr::KeyInterpolation interpolation = vl::zr::kInterpolationLinear;
    std::vector<float> times;
    std::vector<float> values;

    bool operator==(const Curve& other) const;  // to the bit
    bool IsEmpty() const { return times.empty(); }
    bool IsCubic() const { return interpolation == vl::zr::kInterpolationCubic; }
    // How many numbers a key has, and how many of them are its value.
    std::size_t Stride() const { return times.empty() ? 0 : values.size() / times.size(); }
    std::size_t Width() const { return IsCubic() ? Stride() / 3 : Stride(); }
    const float* Value(std::size_t key) const {
        return values.data() + key * Stride() + (IsCubic() ? Width() : 0);
    }

    // Every time becomes time * scale + offset; the keys stay in time order.
    void Retime(float scale, float offset);
};

// The value of a curve at a time; it is constant before the first and after the last key. The curve must have
// a key; out receives Width() numbers. A rotation's values are unit quaternions x, y, z, w: linear ones turn
// along the shorter arc.
KERNIX_API void EvaluateNumbers(const Curve& curve, float time, double* out);
KERNIX_API Rotation EvaluateRotation(const Curve& curve, float time);

// Cubic Hermite curve between two values with slopes, s from 0 to 1 over span seconds.
inline double Hermite(double a, double slopeA, double b, double slopeB, double s, double span) {
    const double s2 = s * s;
    const double s3 = s2 * s;
    return (2 * s3 - 3 * s2 + 1) * a + span * (s3 - 2 * s2 + s) * slopeA + (-2 * s3 + 3 * s2) * b +
           span * (s3 - s2) * slopeB;
}

// Supplies curves on first use. It must outlive the curves that refer to it.
class CurveSource {
public:
    virtual ~CurveSource() = default;
    virtual std::size_t KeyCount(std::uint32_t id) const = 0;
    virtual Curve Read(std::uint32_t id) const = 0;
};

// A curve that is read from its source on first use.
class KERNIX_API StoredCurve {
public:
    StoredCurve() = default;
    explicit StoredCurve(Curve curve);
    StoredCurve(const CurveSource& source, std::uint32_t id) : m_source(&source), m_id(id) {}

    std::size_t KeyCount() const;
    const Curve& Get() const;
    Curve& Edit();  // detaches the curve from its source

    // Whether it is still the source's curve.
    bool IsAsStored() const { return m_source != nullptr; }
    // Frees the curve if it can be read again.
    void Unload() const {
        if (m_source != nullptr) m_curve.reset();
    }

private:
    mutable std::unique_ptr<Curve> m_curve;  // null: no keys, or not read yet
    const CurveSource* m_source = nullptr;
    std::uint32_t m_id = 0;
};

}  // namespace kernix
