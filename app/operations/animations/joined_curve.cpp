// SPDX-License-Identifier: MIT
#include "app/operations/animations/joined_curve.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace zr {
namespace {

using kernix::Curve;
using vl::zr::KeyInterpolation;
using Values = std::vector<float>;

float After(float time) {
    return std::nextafter(time, std::numeric_limits<float>::infinity());
}
float Before(float time) {
    return std::nextafter(time, -std::numeric_limits<float>::infinity());
}

Values ValueOf(const Curve& curve, std::size_t key) {
    return {curve.Value(key), curve.Value(key) + curve.Width()};
}

// The interpolation that can represent all of the curves.
KeyInterpolation InterpolationOf(std::span<const Curve* const> curves) {
    const auto have = [&](KeyInterpolation interpolation) {
        return std::ranges::any_of(curves,
                                   [&](const Curve* curve) { return curve->interpolation == interpolation; });
    };
    return have(vl::zr::kInterpolationCubic)    ? vl::zr::kInterpolationCubic
           : have(vl::zr::kInterpolationLinear) ? vl::zr::kInterpolationLinear
                                                : vl::zr::kInterpolationStep;
}

// A curve that is built by appending.
class CurveBuilder {
public:
    explicit CurveBuilder(KeyInterpolation interpolation) { m_curve.interpolation = interpolation; }

    bool IsEmpty() const { return m_curve.IsEmpty(); }
    Values Last() const { return ValueOf(m_curve, m_curve.times.size() - 1); }

    // Adds a key at the time or, if that is not after the last key, at the next float after it.
    void Add(float time, const Values& value) {
        Add(time, value, Values(value.size()), Values(value.size()));
    }

    // Holds the last value until just before a jump at the time. Returns the time of the jump: at least the
    // next float after the last key.
    float HoldUntil(float time) {
        const float from = std::max(time, After(m_curve.times.back()));
        if (!IsOf(vl::zr::kInterpolationStep) && Before(from) > m_curve.times.back())
            Add(Before(from), Last());
        return from;
    }

    // A curve is constant outside its keys, so the slopes before its first key and after its last one are
    // zero.
    void Append(const Curve& curve) {
        const bool goesOn =
            !IsEmpty() && curve.times.front() <= m_curve.times.back() && Last() == ValueOf(curve, 0);
        if (goesOn && m_curve.IsCubic())
            std::ranges::copy(SlopeAfter(curve, 0),
                              m_curve.values.end() - static_cast<std::ptrdiff_t>(curve.Width()));
        for (std::size_t key = goesOn ? 1 : 0; key < curve.times.size(); ++key) {
            if (key > 0 && curve.interpolation == vl::zr::kInterpolationStep && !IsOf(curve.interpolation))
                HoldUntil(curve.times[key]);
            Add(curve.times[key], ValueOf(curve, key), SlopeBefore(curve, key), SlopeAfter(curve, key));
        }
    }

    Curve Take() { return std::move(m_curve); }

private:
    bool IsOf(KeyInterpolation interpolation) const { return m_curve.interpolation == interpolation; }

    void Add(float time, const Values& value, const Values& slopeBefore, const Values& slopeAfter) {
        m_curve.times.push_back(IsEmpty() ? time : std::max(time, After(m_curve.times.back())));
        const auto put = [&](const Values& numbers) {
            m_curve.values.insert(m_curve.values.end(), numbers.begin(), numbers.end());
        };
        if (m_curve.IsCubic()) put(slopeBefore);
        put(value);
        if (m_curve.IsCubic()) put(slopeAfter);
    }

    static Values SlopeBefore(const Curve& curve, std::size_t key) {
        if (key == 0) return Values(curve.Width());
        if (curve.IsCubic()) return {curve.Value(key) - curve.Width(), curve.Value(key)};
        return StraightSlope(curve, key - 1);
    }
    static Values SlopeAfter(const Curve& curve, std::size_t key) {
        if (key + 1 == curve.times.size()) return Values(curve.Width());
        if (curve.IsCubic()) return {curve.Value(key) + curve.Width(), curve.Value(key) + 2 * curve.Width()};
        return StraightSlope(curve, key);
    }
    static Values StraightSlope(const Curve& curve, std::size_t key) {
        Values slope(curve.Width());
        if (curve.interpolation == vl::zr::kInterpolationStep) return slope;
        const double seconds = double{curve.times[key + 1]} - double{curve.times[key]};
        for (std::size_t i = 0; i < slope.size(); ++i) {
            const double from = curve.Value(key)[i], to = curve.Value(key + 1)[i];
            slope[i] = static_cast<float>((to - from) / seconds);
        }
        return slope;
    }

    Curve m_curve;
};

}  // namespace

Curve InSequence(std::span<const Stretch> stretches, const std::optional<Values>& rest) {
    std::vector<const Curve*> curves;
    for (const Stretch& stretch : stretches)
        if (stretch.curve != nullptr) curves.push_back(stretch.curve);
    CurveBuilder joined(InterpolationOf(curves));
    for (const Stretch& stretch : stretches) {
        if (stretch.curve == nullptr && !rest) continue;
        const Values first = stretch.curve != nullptr ? ValueOf(*stretch.curve, 0) : *rest;
        // A curve shows its first key before that key too, so the rest value needs a key.
        if (joined.IsEmpty() && stretch.curve != nullptr && rest && *rest != first &&
            stretches.front().start < stretch.start)
            joined.Add(stretches.front().start, *rest);
        if (!joined.IsEmpty() && joined.Last() != first) {
            const float from = joined.HoldUntil(stretch.start);
            if (stretch.curve == nullptr || from < stretch.curve->times.front()) joined.Add(from, first);
        }
        if (stretch.curve != nullptr) joined.Append(*stretch.curve);
    }
    return joined.Take();
}

std::optional<Curve> Joined(std::span<const Curve* const> curves) {
    std::vector<const Curve*> ordered(curves.begin(), curves.end());
    std::ranges::stable_sort(ordered, {}, [](const Curve* curve) { return curve->times.front(); });
    CurveBuilder joined(InterpolationOf(curves));
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        const Curve& curve = *ordered[i];
        if (i > 0 && curve.times.front() < ordered[i - 1]->times.back()) return std::nullopt;
        joined.Append(curve);
    }
    return joined.Take();
}

}  // namespace zr
