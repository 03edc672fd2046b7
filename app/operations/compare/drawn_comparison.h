// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "app/operations/compare/drawn.h"

namespace zr::compare {

// How much two scenes may differ.
struct Tolerance {
    double length = 0;    // of points, scene units
    double angle = 1e-4;  // of directions, radians; of axes also relative to their length
    double value = 1e-5;  // of all other numbers, relative to the greater one, at least 1
};

// A class for each material of two documents; matching materials have the same class.
struct MaterialClasses {
    std::vector<std::size_t> ofA, ofB;
};

// The difference; NaN, which results from non-finite numbers, counts as infinite.
inline double Finite(double difference) {
    return std::isnan(difference) ? HUGE_VAL : difference;
}

struct DrawnDifference {
    std::size_t faces = 0;                    // compared
    double length = 0, angle = 0, value = 0;  // greatest difference of points, directions, other numbers
    std::size_t node = kNone;                 // of the first document, with the greatest length
    std::size_t changed = 0;                  // faces beyond the tolerance, where both scenes have as many
    std::size_t onlyA = 0, onlyB = 0;         // faces without a counterpart
    std::size_t changedNode = kNone;          // of the first document, with the first such face
    std::size_t onlyANode = kNone, onlyBNode = kNone;  // nodes with the first such faces
};

// Compares what two scenes draw in their current poses, face by face, within each class of materials and
// layout of vertices: first in drawing order; faces that differ are then looked for anywhere else.
DrawnDifference CompareDrawn(const Drawn& a, const Drawn& b, const MaterialClasses& materials,
                             const Tolerance& tolerance);

}  // namespace zr::compare
