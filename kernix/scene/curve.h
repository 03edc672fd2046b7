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

// Keys side by side: their times, seconds, in ascending order, and for each an equal number of values. A
// cubic curve holds three times as many: incoming slopes, values and outgoing slopes (units a second), key by
// key.
struct KERNIX_API Curve {
    vl::zr::KeyInterpolation interpolation = vl::zr::kInterpolationLinear;
    std::vector<float> times;
    std::vector<float> values;

    bool operator==(const Curve& other) const;  // to the bit
    bool IsEmpty() const { return times.empty(); }
    bool IsCubic() const { return interpolation == vl::zr::kInterpolationCubic; }
    std::size_t Stride() const {
        return times.empty() ? 0 : values.size() / times.size();
    }                                                                          // numbers of a key
    std::size_t Width() const { return IsCubic() ? Stride() / 3 : Stride(); }  // of its value
    const float* Value(std::size_t key) const {
        return values.data() + key * Stride() + (IsCubic() ? Width() : 0);
    }

    // Every time becomes time * scale + offset; the keys stay in time order.
    void Retime(float scale, float offset);
};

// What a curve shows at a time. Before the first and after the last key it stays. At least one key; out: as
// many numbers as a value has. A rotation's values are unit quaternions x, y, z, w: linear ones turn the
// short way.
KERNIX_API void EvaluateNumbers(const Curve& curve, float time, double* out);
KERNIX_API Rotation EvaluateRotation(const Curve& curve, float time);

// Cubic Hermite curve between two values with slopes, s from 0 to 1 over span seconds.
inline double Hermite(double a, double slopeA, double b, double slopeB, double s, double span) {
    const double s2 = s * s;
    const double s3 = s2 * s;
    return (2 * s3 - 3 * s2 + 1) * a + span * (s3 - 2 * s2 + s) * slopeA + (-2 * s3 + 3 * s2) * b +
           span * (s3 - s2) * slopeB;
}

// Where curves come from when somebody first asks for them. It outlives the curves that refer to it.
class CurveSource {
public:
    virtual ~CurveSource() = default;
    virtual std::size_t KeyCount(std::uint32_t id) const = 0;
    virtual Curve Read(std::uint32_t id) const = 0;
};

// A curve that stays where it comes from until somebody asks for it.
class KERNIX_API StoredCurve {
public:
    StoredCurve() = default;
    explicit StoredCurve(Curve curve);
    StoredCurve(const CurveSource& source, std::uint32_t id) : m_source(&source), m_id(id) {}

    std::size_t KeyCount() const;
    const Curve& Get() const;
    Curve& Edit();  // from here on it is a curve of its own

    // Whether it is what the source holds.
    bool IsAsStored() const { return m_source != nullptr; }
    // Frees what can be read again.
    void Unload() const {
        if (m_source != nullptr) m_curve.reset();
    }

private:
    mutable std::unique_ptr<Curve> m_curve;  // null: no keys, or not read yet
    const CurveSource* m_source = nullptr;
    std::uint32_t m_id = 0;
};

}  // namespace kernix
