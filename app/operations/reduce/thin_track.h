// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace zr::reduce {

// The keys of a linear curve; the values are stored one after another, `width` numbers each.
struct Keys {
    std::vector<float> times;
    std::vector<float> values;
};

// A linear curve with fewer keys that stays within the tolerance of the given one at every time: distance for
// vectors, angle in radians for rotations. The first and the last key do not change. The keys between may get
// other values, so that pieces reach further: a chord through points of the curve deviates to one side only,
// a fitted line to both sides, half as far.
//
//   0@0, 1.1@1, 1.9@2, 3@3 within 0.2   ->   0@0, 3@3
//
// Each piece starts where the previous one ends and extends as long as one straight line fits all its keys
// (the swinging door of Bristol, "Swinging door trending", ISA 1990, in as many dimensions as the values
// have; for rotations, on rotation vectors from the start of the piece). Keys that are half a turn apart, or
// nearly, do not change, so that every turn keeps its direction. O(n log n).
Keys ThinnedVectors(const Keys& keys, std::size_t width, double tolerance);
Keys ThinnedRotations(const Keys& keys, double tolerance);

}  // namespace zr::reduce
