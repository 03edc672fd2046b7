// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "host/interface.h"

namespace vl {

// Carries a stop request into a running operation. The request may be made on any thread, and is read without
// a lock between two elements of work. The order of functions and fields is the binary interface
// (host/api.h).
class Context : public Interface {
public:
    virtual void SetBreak(bool on) = 0;

    bool IsBreak() const { return m_bBreak.load(std::memory_order_relaxed) != 0; }

    const char* GetTypeName() override { return "zr_context"; }

    std::atomic<unsigned char> m_bBreak{0};
};

}  // namespace vl
