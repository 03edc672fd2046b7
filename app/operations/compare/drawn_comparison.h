// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "app/operations/compare/drawn.h"

namespace zr::compare {

// How far two scenes may be apart.
struct Tolerance {
    double length = 0;    // of points, scene units
    double angle = 1e-4;  // of directions, radians; of axes also the relative length
    double value = 1e-5;  // of all other numbers, relative to the greater of them and 1
};

// The materials of two documents, numbered alike where they are the same.
struct MaterialClasses {
    std::vector<std::size_t> ofA, ofB;
};

// A difference; NaN, from numbers that are not finite, counts as infinite.
inline double Finite(double difference) {
    return std::isnan(difference) ? HUGE_VAL : difference;
}

struct DrawnDifference {
    std::size_t faces = 0;                    // compared
    double length = 0, angle = 0, value = 0;  // the greatest of points, normals and tangents, other numbers
    std::size_t node = kNone;                 // of the first document, of the greatest
    std::size_t changed = 0;                  // faces beyond the tolerance, where both have equally many
    std::size_t onlyA = 0, onlyB = 0;         // faces without a counterpart
    std::size_t changedNode = kNone;          // of the first document, of the first such face
    std::size_t onlyANode = kNone, onlyBNode = kNone;  // nodes of the first such faces
};

// Compares what two scenes draw as they stand, face by face, within each material and layout of vertices:
// first in the order in which they are drawn; what differs then is looked for anywhere.
DrawnDifference CompareDrawn(const Drawn& a, const Drawn& b, const MaterialClasses& materials,
                             const Tolerance& tolerance);

}  // namespace zr::compare
