// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

namespace zr::reduce {

// The keys of a linear curve: values follow one another, width numbers each.
struct Keys {
    std::vector<float> times;
    std::vector<float> values;
};

// A linear curve with fewer keys that stays within a distance of the given one at every time: vectors by
// their length, rotations by the angle between them (radians). The first and the last key stay exactly as
// they are; keys between may get another value, which lets a piece reach further: a chord that meets the
// curve at both ends leaves it on one side only, a fitted one on both, half as far.
//
//   0@0, 1.1@1, 1.9@2, 3@3 within 0.2   ->   0@0, 3@3
//
// Each piece starts where the one before it ends and goes on as long as one straight line serves all keys on
// its way (the swinging door of Bristol, "Swinging door trending", ISA 1990, in as many dimensions as the
// values have; for rotations in the logarithm about the start of the piece). Keys that are half a turn apart,
// or nearly, stay exactly as they are, so that every turn keeps its direction. O(n log n).
Keys ThinnedVectors(const Keys& keys, std::size_t width, double tolerance);
Keys ThinnedRotations(const Keys& keys, double tolerance);

}  // namespace zr::reduce
