// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "host/anim_manager.h"

namespace vl::zr {
class Controller;
class Scene;
class Track;
class TransformController;
}  // namespace vl::zr

namespace zrt {
class RotationMerge;
}

// A source of the running merge.
struct AnimSource {
    vl::zr::Animation* pAnimation = nullptr;
    double dStart = 0;   // when it starts, seconds
    double dSecond = 0;  // when it ends, seconds
    double dOffset = 0;  // added to its key times, seconds; 0 keeps them
};

// The animation manager. The members are set while an operation runs and empty between operations. The arrays
// passed may be the scene's own list.
class CAnimManagerImpl final : public zr_ANIM_MANAGER {
public:
    bool IsAnimationUsed(vl::zr::Animation* animation, char16_t* names, int maxLen) override;
    bool RemoveAnimation(ChangeRecord* record, vl::zr::Animation* animation) override;

    bool RemoveAnimations(ChangeRecord* record, vl::Array* animations) override;
    vl::zr::Animation* MergeAnimations(ChangeRecord* record, vl::Array* animations, bool removeSources,
                                       std::uint32_t flags) override;
    bool Reserved(vl::Word, vl::Word, vl::Word) override { return false; }

private:
    void MergeTracks(const std::vector<vl::zr::Animation*>& sources);
    void UndoMerge();
    void CollectSources(const std::vector<vl::zr::Animation*>& animations);

    // object: a node or material, controllers: its controller list or null.
    void MergeObjectTracks(vl::Interface* object, vl::Array* controllers);
    void MergeControllerTracks(vl::Interface* object, vl::zr::Controller* controller);
    void CopyFirstTrack(vl::Interface* object, vl::zr::Controller* controller, vl::zr::Track* source,
                        vl::zr::Track* destination, double offset);
    void MergeTransformKeys(vl::zr::TransformController* controller, vl::zr::Track* source,
                            vl::zr::Track* destination, double offset, zrt::RotationMerge& rotations);
    void StripUnselectedKeys(vl::zr::TransformController* controller, vl::zr::Track* track);

    vl::zr::Scene* m_pScene = nullptr;
    vl::zr::Animation* m_pResult = nullptr;
    std::vector<AnimSource> m_sources;  // in the caller's order
    ChangeRecord* m_pRecord = nullptr;
    std::uint32_t m_dwKeyFlags = 0;
};
