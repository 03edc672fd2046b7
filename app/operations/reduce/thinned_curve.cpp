// SPDX-License-Identifier: MIT
#include "app/operations/reduce/thinned_curve.h"

#include <utility>

#include "app/operations/reduce/thin_track.h"

namespace zr::reduce {

using compare::KeyCurve;

namespace {

Keys KeysOf(const KeyCurve& curve) {
    return {{curve.Times().begin(), curve.Times().end()}, {curve.Values().begin(), curve.Values().end()}};
}

}  // namespace

KeyCurve ThinnedCurve(const KeyCurve& curve, const KeyCurve& straight, bool isRotation, double tolerance) {
    if (!straight.IsLinear() || !(tolerance > 0)) return curve;
    Keys thin = isRotation ? ThinnedRotations(KeysOf(straight), tolerance)
                           : ThinnedVectors(KeysOf(straight), straight.Width(), tolerance);
    if (thin.times.size() >= curve.KeyCount()) return curve;
    return {std::move(thin.times), std::move(thin.values), curve.Width()};
}

}  // namespace zr::reduce
