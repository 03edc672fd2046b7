// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/interface.h"
#include "host/kinds.h"
#include "host/string.h"

namespace vl::zr {

class Animation;
class Node;

// A set of nodes that viewports show or hide together.
// The order of functions and fields is the binary interface (host/api.h).
class Layer : public Interface {
public:
    Array* m_pMembers = nullptr;  // of Node*; may be null

    const char* GetTypeName() override { return "zr_layer"; }
};

// An entry of a viewport's list, which owns it.
struct AnimationReference {
    Animation* pAnimation;
};

// A view of the scene: what it shows, and which animations it plays.
// The order of functions and fields is the binary interface (host/api.h).
class Viewport : public Interface {
public:
    int m_nKind = kViewportView;
    Layer* m_pLayer = nullptr;  // the layer it shows; may be null
    String m_strName;
    Array* m_pAnimationReferences = nullptr;  // of AnimationReference*; may be null

    // Removes and destroys the entry; does nothing when it is not in the list.
    virtual void RemoveAnimationReference(AnimationReference* entry) = 0;

    const char* GetTypeName() override { return "zr_viewport"; }
};

}  // namespace vl::zr
