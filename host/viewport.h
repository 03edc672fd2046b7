// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/interface.h"
#include "host/kinds.h"
#include "host/string.h"

namespace vl::zr {

class Animation;
class Node;

class Layer : public Interface {
public:
    Array* m_pMembers = nullptr;  // of Node*; may be null

    const char* GetTypeName() override { return "zr_layer"; }
};

// An entry of a viewport's list.
struct AnimationReference {
    Animation* pAnimation;
};

class Viewport : public Interface {
public:
    int m_nKind = kViewportView;
    Layer* m_pLayer = nullptr;  // the layer it shows
    String m_strName;
    Array* m_pAnimationReferences = nullptr;  // of AnimationReference*; may be null

    virtual void RemoveAnimationReference(AnimationReference* entry) = 0;

    const char* GetTypeName() override { return "zr_viewport"; }
};

}  // namespace vl::zr
