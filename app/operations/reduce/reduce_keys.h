// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/operations/compare/evaluator.h"
#include "app/operations/reduce/reduce_tolerance.h"
#include "gltf/document.h"

namespace zr {

struct ReduceOptions {
    ReduceTolerance tolerance;
    // The animations to measure errors against, by index, if an earlier pass has already dropped keys. Empty:
    // those of the document.
    std::vector<compare::Animation> originals;
    unsigned jobs = 0;  // at most this many threads; 0: one per core. The result is the same with any number.
    // Called with progress from 0 to 1, on any thread but one at a time; may throw.
    std::function<void(double done)> progress = [](double) {};
};

// The result of a reduction, with the greatest deviations over all animations.
struct ReduceReport {
    std::size_t keysBefore = 0;
    std::size_t keysAfter = 0;
    double length = 0;
    double angle = 0;
    std::string node;       // where the length is greatest
    std::string animation;  // in which it is greatest
    double time = 0;        // when, seconds
    bool isBound = false;   // length and angle are proven bounds: too much moves to measure it
};

// Drops keys from a document's animations and refits the remaining ones, such that no point of any drawn mesh
// moves by more than the length, taking skins and the hierarchy into account, and no camera or light turns by
// more than the angle. Errors count where they are visible: a key of a shoulder has to be more exact than one
// of a finger. First and last keys and step curves do not change, nor do cubic curves unless linear ones need
// fewer keys.
//
// The error caused by a node's curves is bounded by their effect on the points below it; a point's error is
// at most the sum over its ancestors. The tolerance is first divided evenly among the nodes; their shares
// then grow as long as the motion, compared with the original at and between all keys, stays within the
// tolerance. Throws gltf::Error, and whatever progress throws.
ReduceReport ReduceKeys(gltf::Document& document, const ReduceOptions& options);

}  // namespace zr
