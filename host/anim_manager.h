// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "host/array.h"
#include "host/extension.h"
#include "host/kinds.h"

class ChangeRecord;

namespace vl::zr {
class Animation;
}

inline constexpr char kTypeAnimManager[] = "2AA39A1A-49AB-479a-B293-C222FDF04182";

// zr_ANIM_MANAGER::MergeAnimations: the key types kept and merged.
enum AnimMergeFlag : std::uint32_t {
    ANIM_MERGE_POSITION = 0x1,
    ANIM_MERGE_ROTATION = 0x2,
    ANIM_MERGE_SCALE = 0x4,
};

struct AnimMergeKind {
    vl::zr::KeyType keyType;
    AnimMergeFlag flag;
};
inline constexpr AnimMergeKind kAnimMergeKinds[] = {{vl::zr::kKeyPosition, ANIM_MERGE_POSITION},
                                                    {vl::zr::kKeyRotation, ANIM_MERGE_ROTATION},
                                                    {vl::zr::kKeyScale, ANIM_MERGE_SCALE}};

// Operations on a scene's animations. Every animation passed belongs to a scene. A record may be null. One
// object runs one operation at a time, on the thread that works on the scene. The order of functions and
// fields is the binary interface (host/api.h).
class zr_ANIM_MANAGER : public vl::Extension {
public:
    const char* GetTypeName() override { return kTypeAnimManager; }

    // The version of this interface.
    virtual int GetRevision() { return 1; }

    // Whether a viewport that plays animations refers to it. names: null, or receives the viewports' names,
    // each followed by "\n", copied as by wcsncpy: at most maxLen characters, unterminated when the text has
    // maxLen or more, padded with zeros when it has fewer; untouched when nothing refers to the animation.
    // True, with names untouched, when memory runs out: what may be in use must not be removed.
    virtual bool IsAnimationUsed(vl::zr::Animation* animation, char16_t* names, int maxLen) = 0;

    // Removes the animation from its scene, with every viewport's reference to it. Returns the result of the
    // scene's deletion; false for null, when the scene forbids it, and when memory runs out. In the last case
    // the animation stays, but viewports may have lost their references.
    virtual bool RemoveAnimation(ChangeRecord* record, vl::zr::Animation* animation) = 0;

    // True when at least one removal succeeded. The array may be the scene's own list. Animations for which
    // memory runs out stay.
    virtual bool RemoveAnimations(ChangeRecord* record, vl::Array* animations) = 0;

    // Creates an animation of the scene with the first source's tracks and the later sources' transform keys.
    // flags: AnimMergeFlag. removeSources: removes the sources as RemoveAnimations does. Null, with the scene
    // unchanged, for a null array, for fewer than two animations and when memory runs out.
    virtual vl::zr::Animation* MergeAnimations(ChangeRecord* record, vl::Array* animations,
                                               bool removeSources, std::uint32_t flags) = 0;

    // Does nothing and returns false. Keeps its slot in the table.
    virtual bool Reserved(vl::Word a, vl::Word b, vl::Word c) = 0;

private:
    void DeleteThis() override { delete this; }
};
