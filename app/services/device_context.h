// SPDX-License-Identifier: MIT
#pragma once

#include "platform/windows.h"

namespace zr {

// A device context of the screen, released with the object.
class DeviceContext {
public:
    DeviceContext() : m_dc(GetDC(nullptr)) {}
    ~DeviceContext() { ReleaseDC(nullptr, m_dc); }
    DeviceContext(const DeviceContext&) = delete;
    DeviceContext& operator=(const DeviceContext&) = delete;

    operator HDC() const { return m_dc; }

private:
    HDC m_dc;
};

}  // namespace zr
