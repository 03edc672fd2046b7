// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/operations/export/export_options.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The effect of an export on keys and motion.
struct MotionReport {
    MotionCheck check = MotionCheck::kOff;  // the check that was made
    std::size_t keysBefore = 0;
    std::size_t keysAfter = 0;
    // The greatest distance, in scene units, of a node's origin or of a point one unit along one of its axes.
    double deviation = 0;
    double time = 0;        // seconds of the scene's time
    std::string node;       // where; empty when nothing was compared
    std::string animation;  // of the node's motion
    double size = 0;  // of the scene, scene units: diagonal of the bounding box of the nodes, at least 1
    double valueDeviation = 0;  // the greatest of weights and pointers, relative to the range of the curve
    double valueTime = 0;       // seconds
    std::string value;          // the name of its animation; empty if there is no deviation
    std::vector<std::string> nodeNotes;  // ChosenNodes::notes
    std::string unreadKeys;  // describes keys that cannot be read and are exported unchanged; empty: none
};

std::string NameOf(MotionCheck check);  // "quick"

// The number of transform keys of the animation.
std::size_t CountKeys(const kernix::AnimationModel& animation);

// Adds the report of another animation.
void Add(MotionReport& report, const MotionReport& other);

// Throws std::runtime_error if the motion deviates more than the options allow.
void CheckDeviation(const MotionReport& report, const ExportOptions& options);

// "12 keys became 4; quick check: largest deviation 1.2e-07 at 0.5 s, node "box", animation "walk""
std::string Describe(const MotionReport& report);

}  // namespace zr
