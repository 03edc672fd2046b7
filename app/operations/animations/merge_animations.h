// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/operations/animations/animation_edit.h"
#include "host/anim_manager.h"

namespace zr {

struct MergeOptions {
    // The kinds of keys to merge; others are dropped.
    std::uint32_t keyFlags = ANIM_MERGE_POSITION | ANIM_MERGE_ROTATION | ANIM_MERGE_SCALE;
    bool removeSources = false;
    std::string name;         // of the result; empty: the module chooses one
    bool inSequence = false;  // false: every source keeps its own times
    double gap = 0;           // seconds between sources in sequence; not negative
};

struct MergeReport {
    kernix::AnimationModel* result = nullptr;
    // Nodes whose merged keys come from sources that overlap in time.
    std::vector<std::string> overlapping;
    // Channels that the scene does not play, and weights and pointers that several sources animate at the
    // same time, of all but the first of these.
    std::vector<std::string> dropped;
    // Sources of zero length, which the next one replaces at once.
    std::vector<std::string> unseen;
    // Properties without a known rest value: they show their first value before their source plays.
    std::vector<std::string> restless;
    // Sources that are not removed because the document refers to them.
    std::vector<std::string> held;
};

// Merges two or more animations of the scene into a new one. The sources are not changed, but removed if the
// options say so. In sequence, each source begins where the one before it ends, and every node then takes the
// pose it has in that source, even where the source has no keys for it. Throws std::runtime_error, leaving
// the scene unchanged, when a source in sequence has no keys or would lose some to rounding, and when the
// result would have no keys.
MergeReport MergeAnimations(Host& host, LoadedScene& loaded, const Animations& sources,
                            const MergeOptions& options);

}  // namespace zr
