// SPDX-License-Identifier: MIT
#include "app/operations/reduce/straight_curve.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

namespace zr::reduce {

using compare::KeyCurve;

KeyCurve Straightened(const KeyCurve& curve, bool isRotation) {
    if (!curve.IsCubic()) return curve;
    constexpr int kLeastDepth = 2, kGreatestDepth = 10;
    const auto at = [&](float time) {
        std::vector<double> value(curve.Width());
        curve.At(static_cast<double>(time), isRotation, value);
        return value;
    };
    const auto given = curve.Times();
    double range = 1;
    for (const float time : given)
        for (const double number : at(time)) range = std::max(range, std::abs(number));
    std::vector<float> times, values;
    const auto add = [&](float time, const std::vector<double>& value) {
        times.push_back(time);
        values.insert(values.end(), value.begin(), value.end());
    };
    add(given[0], at(given[0]));
    struct Piece {
        float to;
        int depth;
    };
    for (std::size_t key = 1; key < given.size(); ++key) {
        std::vector<Piece> open{{given[key], 0}};
        while (!open.empty()) {
            const Piece piece = open.back();
            const float from = times.back(), middle = from + (piece.to - from) / 2;
            const std::vector<double> a = at(from), m = at(middle), b = at(piece.to);
            double off = 0;
            for (std::size_t i = 0; i < m.size(); ++i)
                off = std::max(off, std::abs(m[i] - (a[i] + b[i]) / 2));
            // A curve may cross its chord in the middle, so the first subdivisions are always made.
            const bool isClose = piece.depth >= kLeastDepth && off <= 1e-5 * range;
            if (isClose || piece.depth == kGreatestDepth || middle <= from || middle >= piece.to) {
                add(piece.to, b);
                open.pop_back();
                continue;
            }
            open.back().depth = piece.depth + 1;
            open.push_back({middle, piece.depth + 1});
        }
    }
    return {std::move(times), std::move(values), curve.Width()};
}

}  // namespace zr::reduce
