// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/math.h"

namespace vl::zr {
class RotationKey;
class Track;
class TransformController;
}  // namespace vl::zr

namespace zrt {

// Merges the rotation keys of several tracks into one track of angle-axis keys, in which every key shows the
// orientation it had in its own track, even where the sources' keys alternate in time. Call MergeRotationKeys
// for each source, then Finish; until then the destination's values are not valid, and nothing else may
// change its rotation keys.
class RotationMerge {
public:
    RotationMerge(vl::zr::TransformController* controller, vl::zr::Track* destination)
        : m_controller(controller), m_destination(destination) {}

    // Adds the keys of source, in any form, offset seconds later.
    void MergeRotationKeys(vl::zr::Track* source, double offset);

    // Sets the values of the keys. Does nothing if no source was added.
    void Finish();

private:
    struct MergedKey {
        float time;                  // seconds, in the destination
        vl::Quaternion orientation;  // to be shown at that time
        int stepFrom;                // the key that its value is relative to: index as added, or kNoStep
        int index;                   // as added
    };
    static constexpr int kNoStep = -1;

    void RememberExistingKeys();
    void Remember(vl::zr::RotationKey* key, int indexInTrack, float time);

    vl::zr::TransformController* m_controller;
    vl::zr::Track* m_destination;
    bool m_started = false;
    std::vector<MergedKey> m_keys;
    vl::Matrix4<double> m_orientation;  // of the key remembered last
};

}  // namespace zrt
