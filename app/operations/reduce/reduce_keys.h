// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "app/operations/compare/evaluator.h"
#include "gltf/document.h"

namespace zr {

// What a reduction may change. Zero: nothing of the kind.
struct ReduceTolerance {
    double length = 0;  // scene units: how far a drawn point may leave its place in the world
    double angle =
        0;  // radians: how far a camera, a light or a moving node that nothing is drawn below may turn
    double value = 0;  // morph weights and values of pointers
};

struct ReduceOptions {
    ReduceTolerance tolerance;
    // What errors count from where a pass before has taken keys already: the animations as they were, each
    // with the number that it has in the document. Empty: the document's own.
    std::vector<compare::Animation> originals;
    unsigned jobs = 0;  // at most this many threads; 0: one per core. The result is the same with any number.
    std::function<void(double done)> progress = [](double) {
    };  // 0 to 1, on any thread, one at a time; may throw
};

// What the reduction did, and how far anything strays at the worst time of any animation.
struct ReduceReport {
    std::size_t keysBefore = 0;
    std::size_t keysAfter = 0;
    double length = 0;
    double angle = 0;
    std::string node;       // where the length is greatest
    std::string animation;  // in which it is
    double time = 0;        // when, seconds
    bool isBound = false;   // the lengths and angles are proven bounds: too much moves to be played
};

// Takes keys out of a document's animations, and fits those that stay, so that no point of any drawn mesh
// leaves its true place by more than the length, skins and the hierarchy above a mesh included, and no camera
// or light turns by more than the angle. Error counts where it is seen: a key of a shoulder has to be truer
// than one of a finger. First and last keys and curves with steps stay exactly as they are, and so do cubic
// curves unless straight lines need fewer keys.
//
// The error that a node's curves cause is bounded by what they change about the points below it; a point's
// error is at most the sum over the nodes above it. From this bound, shared out evenly, the nodes' shares
// grow for as long as the motion, played beside the original at all keys and between them, stays within the
// tolerance. Throws gltf::Error.
ReduceReport ReduceKeys(gltf::Document& document, const ReduceOptions& options);

}  // namespace zr
