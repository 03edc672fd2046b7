// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "host/animation.h"
#include "kernix/scene/track.h"

namespace kernix {

class KERNIX_API AnimationModel final : public vl::zr::Animation {
public:
    void GetNameW(char16_t* buffer, int size) override;

    std::u16string m_name;
    bool m_locked = false;  // the scene forbids its removal

    // Every controller's track for this animation, in the order in which they were added.
    const std::vector<vl::zr::Track*>& Tracks() const { return m_tracks; }

    void DropTracks();  // removes them from their controllers

private:
    friend class TrackList;
    std::vector<vl::zr::Track*> m_tracks;
};

}  // namespace kernix
