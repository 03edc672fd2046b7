// SPDX-License-Identifier: MIT
#pragma once

#include "host/array.h"
#include "host/interface.h"

namespace vl::zr {

// A material of a scene, which owns it.
// The order of functions and fields is the binary interface (host/api.h).
class Material : public Interface {
public:
    Array* m_pControllers = nullptr;  // of Controller*; null when there is none
    void* m_pUserData = nullptr;      // belongs to whoever works on the scene

    // Return 1 and fill the buffer, or 0, with the buffer untouched, when the material has no name.
    virtual int GetName(char* buffer, int size) = 0;
    virtual int GetNameW(char16_t* buffer, int size) = 0;

    const char* GetTypeName() override { return "zr_material"; }
};

}  // namespace vl::zr
