// SPDX-License-Identifier: MIT
#pragma once

#include "host/interface.h"
#include "host/weak_ptr.h"

namespace vl::zr {

class Scene;

// A named animation of a scene. Its content is the controllers' tracks for it.
class Animation : public Interface {
public:
    WeakPtr<Scene> m_scene;

    virtual void GetNameW(char16_t* buffer, int size) = 0;  // terminated within the buffer

    const char* GetTypeName() override { return "zr_animation"; }
};

}  // namespace vl::zr
