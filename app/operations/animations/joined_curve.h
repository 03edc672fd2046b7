// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "kernix/scene/curve.h"

namespace zr {

// A source's part of a sequence, for one property animated as numbers (morph weights, pointers).
struct Stretch {
    const kernix::Curve* curve = nullptr;  // in sequence time; null: the source does not animate the property
    float start = 0;                       // seconds
};

// Joins the sources of a sequence into one curve. Each stretch holds its last value until the next one
// begins; a source that does not animate the property shows `rest`, if known. At least one stretch has a
// curve.
//
//   rest 0, stretches: none from 0, linear 1@3, 2@4 from 2, none from 5   ->   0@0, 0@2-, 1@2, 1@3, 2@4,
//   2@5-, 0@5
//
// If all curves have the same interpolation, the result has it too. If they differ, steps become pairs of
// adjacent keys and, beside cubic curves, linear segments become cubic ones; the values shown stay the same.
kernix::Curve InSequence(std::span<const Stretch> stretches, const std::optional<std::vector<float>>& rest);

// Joins curves that follow one another, each at its own times. Nothing if two of them overlap in time.
std::optional<kernix::Curve> Joined(std::span<const kernix::Curve* const> curves);

}  // namespace zr
