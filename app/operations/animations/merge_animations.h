// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "host/anim_manager.h"

namespace zr {

struct MergeOptions {
    std::uint32_t keyFlags = ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE;  // kept and merged
    bool removeSources = false;
    std::string name;         // of the result; empty: the module's
    bool inSequence = false;  // else every source keeps its own times
    double gap = 0;           // seconds between sources in sequence, not negative
};

struct MergeReport {
    kernix::AnimationModel* result = nullptr;
    std::vector<std::string>
        overlapping;                    // nodes whose merged keys of several sources share a stretch of time
    std::vector<std::string> dropped;   // channels that the scene does not play, and weights and pointers of
                                        // other sources than the first that animates them in the same stretch
                                        // of time
    std::vector<std::string> unseen;    // sources without length that give way to the next one at once
    std::vector<std::string> restless;  // what shows its first value before its source plays, since nothing
                                        // tells where it rests
    std::vector<std::string> held;      // sources that stay because the document refers to them
};

// Merges two or more animations of the scene into a new one. The sources themselves are not changed. In
// sequence, each source begins where the one before it ends, and every node then takes the pose it has in
// that source, even where the source has no keys for it. Throws std::runtime_error when a source in sequence
// has no keys, and when the result would have none.
MergeReport MergeAnimations(Host& host, LoadedScene& loaded, const Animations& sources,
                            const MergeOptions& options);

}  // namespace zr
