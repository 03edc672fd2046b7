// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "kernix/scene/curve.h"

namespace zr {

// A source's share of a sequence, for one of the properties that are animated as numbers.
struct Stretch {
    const kernix::Curve* curve =
        nullptr;      // at the sequence's times; null: the source leaves the property alone
    float start = 0;  // seconds
};

// Sources in sequence as one curve. Each stretch holds what its source shows last until the next one begins;
// a source that leaves the property alone shows `rest`, where that is known. At least one stretch has a
// curve.
//
//   rest 0, stretches: none from 0, linear 1@3, 2@4 from 2, none from 5   ->   0@0, 0@2-, 1@2, 1@3, 2@4,
//   2@5-, 0@5
//
// Curves of one interpolation keep it. Of several, steps become two keys side by side and straight pieces
// cubic ones with their slopes; what they show stays the same.
kernix::Curve InSequence(std::span<const Stretch> stretches, const std::optional<std::vector<float>>& rest);

// Curves one after the other, each at its own times; nothing where two of them share a stretch of time.
std::optional<kernix::Curve> Joined(std::span<const kernix::Curve* const> curves);

}  // namespace zr
