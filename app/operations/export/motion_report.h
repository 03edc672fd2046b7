// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/operations/export/export_options.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// What an export did to the keys and to the motion.
struct MotionReport {
    MotionCheck check = MotionCheck::kOff;  // that was made
    std::size_t keysBefore = 0;
    std::size_t keysAfter = 0;
    double deviation =
        0;  // the greatest, scene units: of a node's origin and of the points one unit along its axes
    double time = 0;        // seconds of the scene's time
    std::string node;       // where; empty when nothing was compared
    std::string animation;  // of the node's motion
    double size = 0;        // of the scene, scene units: diagonal of the box that holds the nodes, 1 at least
    double valueDeviation = 0;  // of weights and pointers, in shares of the range that the curve goes through
    double valueTime = 0;       // seconds
    std::string value;          // of which animation; empty where all are the same
    std::vector<std::string> nodeNotes;  // of the choice of nodes (ChosenNodes)
    std::string unreadKeys;              // which keys could not be read and go out as they are; empty: none
};

std::string NameOf(MotionCheck check);  // "quick"

// Keys of the transforms that the animation moves.
std::size_t CountKeys(const kernix::AnimationModel& animation);

// Adds what was done to another animation.
void Add(MotionReport& report, const MotionReport& other);

// Throws std::runtime_error where the motion comes out further off than the options allow.
void CheckDeviation(const MotionReport& report, const ExportOptions& options);

// "12 keys became 4; quick check: largest deviation 1.2e-07 at 0.5 s, node "box", animation "walk""
std::string Describe(const MotionReport& report);

}  // namespace zr
