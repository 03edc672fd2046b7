// SPDX-License-Identifier: MIT
#include "app/operations/reduce/thin_track.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <numbers>
#include <vector>

namespace zr::reduce {
namespace {

// The direction of a turn between two keys is certain only if they are clearly less than half a turn apart.
constexpr double kGreatestTurn = 0.9 * std::numbers::pi;

using Numbers = std::vector<double>;

// Differences between values of Width() numbers, and steps along them.
class VectorSpace {
public:
    explicit VectorSpace(std::size_t width) : m_width(width) {}
    std::size_t Width() const { return m_width; }
    std::size_t Directions() const { return m_width; }

    // out: the direction from a to b, Directions() numbers.
    void Direction(const double* a, const double* b, double* out) const {
        for (std::size_t i = 0; i < m_width; ++i) out[i] = b[i] - a[i];
    }
    void Step(const double* from, const double* direction, double amount, double* out) const {
        for (std::size_t i = 0; i < m_width; ++i) out[i] = from[i] + direction[i] * amount;
    }
    static constexpr double kGreatestStep = std::numeric_limits<double>::infinity();

private:
    std::size_t m_width;
};

// Unit quaternions x, y, z, w; directions are rotation vectors. The angle between two rotations from one
// start is at most the length of the difference of their rotation vectors.
class RotationSpace {
public:
    static std::size_t Width() { return 4; }
    static std::size_t Directions() { return 3; }

    static void Direction(const double* a, const double* b, double* out) {
        // conjugate(a) * b
        const double w = a[3] * b[3] + a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
        double v[3] = {a[3] * b[0] - a[0] * b[3] - a[1] * b[2] + a[2] * b[1],
                       a[3] * b[1] - a[1] * b[3] - a[2] * b[0] + a[0] * b[2],
                       a[3] * b[2] - a[2] * b[3] - a[0] * b[1] + a[1] * b[0]};
        const double sine = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        const double sign = w < 0 ? -1 : 1;
        const double factor = sine > 1e-12 ? sign * 2 * std::atan2(sine, std::abs(w)) / sine : sign * 2;
        for (std::size_t i = 0; i < 3; ++i) out[i] = v[i] * factor;
    }
    static void Step(const double* from, const double* direction, double amount, double* out) {
        const double angle = amount * std::sqrt(direction[0] * direction[0] + direction[1] * direction[1] +
                                                direction[2] * direction[2]);
        const double factor = std::abs(angle) > 1e-12 ? std::sin(angle / 2) / angle * amount : amount / 2;
        const double x = direction[0] * factor, y = direction[1] * factor, z = direction[2] * factor;
        const double w = std::cos(angle / 2);
        out[0] = from[3] * x + from[0] * w + from[1] * z - from[2] * y;
        out[1] = from[3] * y + from[1] * w + from[2] * x - from[0] * z;
        out[2] = from[3] * z + from[2] * w + from[0] * y - from[1] * x;
        out[3] = from[3] * w - from[0] * x - from[1] * y - from[2] * z;
    }
    static constexpr double kGreatestStep = kGreatestTurn;
};

double Length(const double* v, std::size_t width) {
    double square = 0;
    for (std::size_t i = 0; i < width; ++i) square += v[i] * v[i];
    return std::sqrt(square);
}

template <typename Space>
class Thinner {
public:
    Thinner(const Space& space, const Keys& keys, double tolerance, bool refits)
        : m_space(space),
          m_keys(keys),
          m_tolerance(tolerance),
          m_refits(refits),
          m_values(keys.values.begin(), keys.values.end()),
          m_directions((keys.times.size() + 1) * space.Directions()),
          m_low(space.Directions()),
          m_high(space.Directions()),
          m_velocity(space.Directions()) {
        if constexpr (std::is_same_v<Space, RotationSpace>) {
            for (std::size_t key = 0; key < keys.times.size(); ++key) {
                double* q = &m_values[4 * key];
                const double norm = Length(q, 4);
                for (std::size_t i = 0; norm > 0 && i < 4; ++i) q[i] /= norm;
            }
        }
        MarkAnchors();
    }

    Keys Thin() {
        Keys thin;
        const std::size_t count = m_keys.times.size(), width = m_space.Width();
        std::vector<double> start(m_values.begin(), m_values.begin() + static_cast<std::ptrdiff_t>(width));
        Keep(thin, 0);
        for (std::size_t at = 0; at + 1 < count;) {
            const std::size_t end = Farthest(at, start.data());
            if (IsExactEnd(at, end)) {
                Keep(thin, end);
                std::copy_n(&m_values[end * width], width, start.begin());
            } else {
                Fits(at, end, start.data());
                std::vector<double> value(width);
                m_space.Step(start.data(), m_velocity.data(), Seconds(at, end), value.data());
                thin.times.push_back(m_keys.times[end]);
                for (const double number : value) thin.values.push_back(static_cast<float>(number));
                start = value;
            }
            at = end;
        }
        return thin;
    }

private:
    double Seconds(std::size_t from, std::size_t to) const {
        return static_cast<double>(m_keys.times[to]) - static_cast<double>(m_keys.times[from]);
    }

    void Keep(Keys& thin, std::size_t key) const {
        const std::size_t width = m_space.Width();
        thin.times.push_back(m_keys.times[key]);
        const auto first = m_keys.values.begin() + static_cast<std::ptrdiff_t>(key * width);
        thin.values.insert(thin.values.end(), first, first + static_cast<std::ptrdiff_t>(width));
    }

    // Marks keys that must not change: the ends, and both sides of a step that is too great.
    void MarkAnchors() {
        const std::size_t count = m_keys.times.size();
        m_anchors.assign(count, false);
        m_anchors.front() = m_anchors.back() = true;
        std::vector<double> step(m_space.Directions());
        for (std::size_t key = 0; key + 1 < count; ++key) {
            m_space.Direction(&m_values[key * m_space.Width()], &m_values[(key + 1) * m_space.Width()],
                              step.data());
            if (Length(step.data(), step.size()) >= Space::kGreatestStep)
                m_anchors[key] = m_anchors[key + 1] = true;
        }
        m_nextAnchor.assign(count, count - 1);
        for (std::size_t key = count - 1; key-- > 0;)
            m_nextAnchor[key] = m_anchors[key + 1] ? key + 1 : m_nextAnchor[key + 1];
    }

    bool IsExactEnd(std::size_t at, std::size_t end) const {
        return !m_refits || m_anchors[end] || end == at + 1;
    }

    // The last key that one straight piece can reach; at least the next key.
    std::size_t Farthest(std::size_t at, const double* start) {
        const std::size_t limit = m_nextAnchor[at];
        std::size_t good = at + 1, bad = limit + 1;
        for (std::size_t stride = 2; good < limit; stride *= 2) {
            const std::size_t next = std::min(at + stride, limit);
            if (!Fits(at, next, start)) {
                bad = next;
                break;
            }
            good = next;
        }
        while (bad - good > 1) {
            const std::size_t middle = good + (bad - good) / 2;
            (Fits(at, middle, start) ? good : bad) = middle;
        }
        return good;
    }

    // Whether a straight piece from `start`, at key `at`, to key `end` stays within the tolerance of all keys
    // between. Sets m_velocity.
    bool Fits(std::size_t at, std::size_t end, const double* start) {
        const std::size_t directions = m_space.Directions();
        std::fill(m_low.begin(), m_low.end(), -std::numeric_limits<double>::infinity());
        std::fill(m_high.begin(), m_high.end(), std::numeric_limits<double>::infinity());
        for (std::size_t key = at + 1; key <= end; ++key) {
            double* direction = &m_directions[(key - at) * directions];
            m_space.Direction(start, &m_values[key * m_space.Width()], direction);
            if (Length(direction, directions) > Space::kGreatestStep && end != at + 1) return false;
            const double seconds = Seconds(at, key);
            for (std::size_t i = 0; i < directions; ++i) {
                m_low[i] = std::max(m_low[i], (direction[i] - m_tolerance) / seconds);
                m_high[i] = std::min(m_high[i], (direction[i] + m_tolerance) / seconds);
            }
        }
        const double whole = Seconds(at, end);
        for (std::size_t i = 0; i < directions; ++i) {
            m_velocity[i] = IsExactEnd(at, end) ? m_directions[(end - at) * directions + i] / whole
                                                : (m_low[i] + m_high[i]) / 2;
        }
        for (std::size_t key = at + 1; key <= end; ++key) {
            const double seconds = Seconds(at, key);
            double square = 0;
            for (std::size_t i = 0; i < directions; ++i) {
                const double off = m_velocity[i] * seconds - m_directions[(key - at) * directions + i];
                square += off * off;
            }
            if (square > m_tolerance * m_tolerance && key != end) return false;
            if (square > m_tolerance * m_tolerance && !IsExactEnd(at, end)) return false;
        }
        return true;
    }

    const Space& m_space;
    const Keys& m_keys;
    const double m_tolerance;
    const bool m_refits;
    Numbers m_values;
    std::vector<bool> m_anchors;
    std::vector<std::size_t> m_nextAnchor;
    Numbers m_directions;  // from the start of the piece to each of its keys
    Numbers m_low, m_high, m_velocity;
};

template <typename Space>
Keys Thinned(const Space& space, const Keys& keys, double tolerance) {
    if (keys.times.size() < 3) return keys;
    Keys fitted = Thinner(space, keys, tolerance, true).Thin();
    Keys kept = Thinner(space, keys, tolerance, false).Thin();
    return kept.times.size() <= fitted.times.size() ? kept : fitted;
}

}  // namespace

Keys ThinnedVectors(const Keys& keys, std::size_t width, double tolerance) {
    return Thinned(VectorSpace(width), keys, tolerance);
}

Keys ThinnedRotations(const Keys& keys, double tolerance) {
    return Thinned(RotationSpace(), keys, tolerance);
}

}  // namespace zr::reduce
