// SPDX-License-Identifier: MIT
#include "app/scene/curve_cut.h"

#include <algorithm>
#include <cmath>

namespace zr {
namespace {

using Key = std::vector<float>;  // all numbers of one key

Key KeyAt(const Curve& curve, std::size_t index) {
    const auto at = curve.values.begin() + static_cast<std::ptrdiff_t>(index * curve.Stride());
    return Key(at, at + static_cast<std::ptrdiff_t>(curve.Stride()));
}

void Append(Curve& curve, float time, const Key& key) {
    curve.times.push_back(time);
    curve.values.insert(curve.values.end(), key.begin(), key.end());
}

// The key that splits a cubic segment without changing the curve.
Key WithinCubic(const Curve& curve, std::size_t next, float time, bool isRotation) {
    const std::size_t width = curve.Width();
    const float *a = curve.Value(next - 1), *b = curve.Value(next);
    const double span = double{curve.times[next]} - curve.times[next - 1];
    const double s = (double{time} - curve.times[next - 1]) / span, s2 = s * s;
    std::vector<double> value(width), slope(width);
    for (std::size_t i = 0; i < width; ++i) {
        const double from = a[i], to = b[i], out = (a + width)[i], in = (b - width)[i];
        value[i] = kernix::Hermite(from, out, to, in, s, span);
        slope[i] = (6 * s2 - 6 * s) * (from - to) / span + (3 * s2 - 4 * s + 1) * out + (3 * s2 - 2 * s) * in;
    }
    if (isRotation) {
        // The curve shows the normalised values, so the slopes are those of the normalised curve.
        double square = 0, along = 0;
        for (std::size_t i = 0; i < width; ++i) square += value[i] * value[i], along += value[i] * slope[i];
        const double length = square > 0 ? std::sqrt(square) : 1;
        for (std::size_t i = 0; i < width; ++i) {
            slope[i] = (slope[i] - (square > 0 ? value[i] * along / square : 0)) / length;
            value[i] /= length;
        }
    }
    Key key(3 * width);
    for (std::size_t i = 0; i < width; ++i) {
        key[width + i] = static_cast<float>(value[i]);
        key[i] = key[2 * width + i] = static_cast<float>(slope[i]);
    }
    return key;
}

// Sets both slopes to 0.
void Level(Key& key) {
    std::fill_n(key.begin(), key.size() / 3, 0.0F);
    std::fill_n(key.end() - static_cast<std::ptrdiff_t>(key.size() / 3), key.size() / 3, 0.0F);
}

// A single key has no slopes, so a curve of one key is linear.
Curve Posed(Curve curve) {
    if (!curve.IsCubic()) return curve;
    const float* value = curve.Value(0);
    return {vl::zr::kInterpolationLinear, curve.times, Key(value, value + curve.Width())};
}

bool TurnsAlike(const Curve& a, const Curve& b, float from, float to) {
    constexpr double kHalfAngle = 5e-7;  // radians
    for (const float share : {0.25F, 0.5F, 0.75F}) {
        const float time = from + (to - from) * share;
        const kernix::Rotation p = kernix::EvaluateRotation(a, time), q = kernix::EvaluateRotation(b, time);
        const kernix::Rotation between = p.Inverted().Times(q);
        if (std::hypot(between.x, between.y, between.z) > kHalfAngle) return false;
    }
    return true;
}

// Appends the given key, preceded by as many keys as the new piece needs to turn as the whole curve does.
void AppendTurn(Curve& part, const Curve& whole, float to, const Key& last) {
    struct End {
        float time;
        Key key;
    };
    constexpr std::size_t kMostPieces = 64;
    std::vector<End> open{{to, last}};
    for (std::size_t pieces = 0; !open.empty();) {
        const float from = part.times.back();
        Curve piece{part.interpolation, {}, {}};
        Append(piece, from, KeyAt(part, part.times.size() - 1));
        Append(piece, open.back().time, open.back().key);
        const float middle = from + (open.back().time - from) / 2;
        const bool canSplit = pieces < kMostPieces && from < middle && middle < open.back().time;
        if (canSplit && !TurnsAlike(piece, whole, from, open.back().time)) {
            ++pieces;
            open.push_back({middle, KeyShownAt(whole, middle, true)});
            continue;
        }
        Append(part, open.back().time, open.back().key);
        open.pop_back();
    }
}

}  // namespace

std::vector<float> KeyShownAt(const Curve& curve, float time, bool isRotation) {
    const auto& times = curve.times;
    const auto next =
        static_cast<std::size_t>(std::lower_bound(times.begin(), times.end(), time) - times.begin());
    if (next < times.size() && times[next] == time) return KeyAt(curve, next);
    if (next == 0 || next == times.size()) {
        Key key = KeyAt(curve, next == 0 ? 0 : next - 1);
        if (curve.IsCubic()) Level(key);
        return key;
    }
    if (curve.interpolation == vl::zr::kInterpolationStep) return KeyAt(curve, next - 1);
    if (curve.IsCubic()) return WithinCubic(curve, next, time, isRotation);
    if (isRotation) {
        const vl::Quaternion q = kernix::EvaluateRotation(curve, time).ToQuaternion();
        return {q.x, q.y, q.z, q.w};
    }
    std::vector<double> value(curve.Width());
    kernix::EvaluateNumbers(curve, time, value.data());
    return Key(value.begin(), value.end());
}

Curve Cut(const Curve& curve, float from, float to, bool isRotation) {
    Curve part{curve.interpolation, {}, {}};
    const auto& times = curve.times;
    const bool cutsFrom = std::isfinite(from), cutsTo = std::isfinite(to);
    if (times.size() < 2) {
        Append(part, cutsFrom ? from : std::min(times.front(), to), KeyAt(curve, 0));
        return Posed(std::move(part));
    }
    const auto place = [](auto at, const auto& list) { return static_cast<std::size_t>(at - list.begin()); };
    const std::size_t first = place(std::upper_bound(times.begin(), times.end(), from), times);
    const std::size_t end = place(std::lower_bound(times.begin(), times.end(), to), times);
    const auto append = [&](float time, const Key& key, bool isCut) {
        if (isCut && isRotation && curve.IsCubic() && !part.IsEmpty())
            AppendTurn(part, curve, time, key);
        else
            Append(part, time, key);
    };
    if (cutsFrom) Append(part, from, KeyShownAt(curve, from, isRotation));
    for (std::size_t i = first; i < end; ++i) {
        Key key = KeyAt(curve, i);
        if (curve.IsCubic() && i == 0 && cutsFrom) std::fill_n(key.begin(), curve.Width(), 0.0F);
        if (curve.IsCubic() && i + 1 == times.size() && cutsTo)
            std::fill_n(key.end() - static_cast<std::ptrdiff_t>(curve.Width()), curve.Width(), 0.0F);
        append(times[i], key, i == first && i > 0 && cutsFrom);
    }
    if (cutsTo && (part.IsEmpty() || part.times.back() < to))
        append(to, KeyShownAt(curve, to, isRotation), end > 0 && end < times.size());
    return part.times.size() < 2 ? Posed(std::move(part)) : part;
}

Curve SampledAt(const Curve& curve, const std::vector<float>& times, double slack, bool isRotation) {
    const bool isStep = curve.interpolation == vl::zr::kInterpolationStep;
    const std::size_t width = curve.Width();
    Curve sampled;
    sampled.interpolation = isStep ? vl::zr::kInterpolationStep : vl::zr::kInterpolationLinear;
    sampled.times = times;
    sampled.values.reserve(times.size() * width);
    std::vector<double> numbers(width);
    for (const float time : times) {
        if (isRotation && !isStep) {
            const vl::Quaternion q = kernix::EvaluateRotation(curve, time).ToQuaternion();
            sampled.values.insert(sampled.values.end(), {q.x, q.y, q.z, q.w});
            continue;
        }
        kernix::EvaluateNumbers(curve, isStep ? static_cast<float>(time + slack) : time, numbers.data());
        sampled.values.insert(sampled.values.end(), numbers.begin(), numbers.end());
    }
    return sampled;
}

}  // namespace zr
