// SPDX-License-Identifier: MIT
#include "app/operations/export/thin_curve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace zr {
namespace {

// Baking rounds values and times to floats, which moves a key off the line between two others by up to three
// float steps in all.
constexpr double kTolerance = 4 * double{std::numeric_limits<float>::epsilon()};

// The least cosine of half the angle between two kept orientations: near a half turn, rounding would decide
// which way is shorter.
constexpr double kLeastCosine = 0.1;

// The offset from a kept key to a later one, in coordinates in which interpolation is linear.
struct Way {
    double offset[3];
    double tolerance;  // of each coordinate; negative: no segment may end here or go beyond
};

Way VectorWay(const float* from, const float* to) {
    Way way{};
    double size = 0;
    for (int i = 0; i < 3; ++i) {
        way.offset[i] = double{to[i]} - from[i];
        size = std::max({size, std::fabs(double{from[i]}), std::fabs(double{to[i]})});
    }
    way.tolerance = kTolerance * size;
    return way;
}

kernix::Rotation RotationOf(const float* q) {
    return kernix::Rotation::From(vl::Quaternion(q[0], q[1], q[2], q[3]));
}

// Half the rotation vector: interpolation between the two orientations passes through its multiples.
Way TurnWay(const float* from, const float* to) {
    kernix::Rotation turn = RotationOf(from).Inverted().Times(RotationOf(to));
    if (turn.w < 0) turn = {-turn.x, -turn.y, -turn.z, -turn.w};
    const double sine = std::sqrt(turn.x * turn.x + turn.y * turn.y + turn.z * turn.z);
    const double factor = sine > 0 ? std::atan2(sine, turn.w) / sine : 1;
    return {{turn.x * factor, turn.y * factor, turn.z * factor}, turn.w < kLeastCosine ? -1 : kTolerance};
}

// The slopes of the lines from a kept key that pass within tolerance of all keys since.
class Slopes {
public:
    bool Allow(const Way& way, double span) const {
        if (way.tolerance < 0) return false;
        for (std::size_t i = 0; i < 3; ++i) {
            const double slope = way.offset[i] / span;
            if (!(slope >= m_least[i] && slope <= m_greatest[i])) return false;
        }
        return true;
    }
    void Narrow(const Way& way, double span) {
        for (std::size_t i = 0; i < 3; ++i) {
            m_least[i] = std::max(m_least[i], (way.offset[i] - way.tolerance) / span);
            m_greatest[i] = std::min(m_greatest[i], (way.offset[i] + way.tolerance) / span);
        }
    }

private:
    static constexpr double kAny = std::numeric_limits<double>::infinity();
    std::array<double, 3> m_least{-kAny, -kAny, -kAny};
    std::array<double, 3> m_greatest{kAny, kAny, kAny};
};

}  // namespace

Curve Thinned(const Curve& curve) {
    const std::size_t width = curve.Width();
    Curve thinned{curve.interpolation, {}, {}};
    const auto value = [&](std::size_t key) { return curve.values.data() + key * width; };
    const auto keep = [&](std::size_t key) {
        thinned.times.push_back(curve.times[key]);
        thinned.values.insert(thinned.values.end(), value(key), value(key) + width);
    };
    const std::size_t count = curve.times.size();
    std::size_t kept = 0;
    Slopes slopes;
    for (std::size_t i = 1; i < count; ++i) {
        const auto wayTo = [&](std::size_t from) {
            return width == 4 ? TurnWay(value(from), value(i)) : VectorWay(value(from), value(i));
        };
        const auto spanFrom = [&](std::size_t from) { return double{curve.times[i]} - curve.times[from]; };
        Way way = wayTo(kept);
        if (i > kept + 1 && !slopes.Allow(way, spanFrom(kept))) {
            keep(kept);
            kept = i - 1;
            slopes = {};
            way = wayTo(kept);
        }
        slopes.Narrow(way, spanFrom(kept));
    }
    if (count > 0) keep(kept);
    if (count > 1) keep(count - 1);
    return thinned;
}

}  // namespace zr
