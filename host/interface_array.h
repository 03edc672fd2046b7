// SPDX-License-Identifier: MIT
#pragma once

#include "host/interface.h"

namespace vl {

// A list of interfaces that holds a count on each.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API InterfaceArray : public Interface {
public:
    // A new, empty array; null when memory runs out.
    static InterfaceArray* CreateStrong();

    // The element, without a count of its own; null when index is not below GetCount.
    virtual Interface* GetAt(unsigned index) = 0;
    virtual unsigned GetCount() = 0;

    virtual void Add(Interface* element) = 0;     // null is not added
    virtual void Remove(Interface* element) = 0;  // the first occurrence; does nothing when there is none

    const char* GetTypeName() override { return "zr_interface_array"; }
};

}  // namespace vl
