// SPDX-License-Identifier: MIT
#pragma once

#include "host/interface.h"
#include "host/weak_ptr.h"

namespace vl::zr {

class Scene;

// A named animation of a scene, which owns it. Its content is the controllers' tracks for it.
// The order of functions and fields is the binary interface (host/api.h).
class Animation : public Interface {
public:
    WeakPtr<Scene> m_scene;  // the scene it belongs to

    virtual void GetNameW(char16_t* buffer, int size) = 0;

    const char* GetTypeName() override { return "zr_animation"; }
};

}  // namespace vl::zr
