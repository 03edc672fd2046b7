// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/interface.h"

namespace vl {

class InterfaceArray;

// An object that knows the objects that refer to it. A subscription holds no count in either direction: a
// subscriber must unsubscribe before it is destroyed.
// The order of functions and fields is the binary interface (host/api.h).
class KERNIX_API ReferenceSource : public Interface {
public:
    ~ReferenceSource() override;

    // The objects that refer to this one, in the order in which they subscribed. filter: a type name
    // their IsTypeOf accepts, or null for all. A new array, which is the caller's to release.
    InterfaceArray* GetSubscribers(const char* filter) const;

    void Subscribe(Interface* subscriber);
    void Unsubscribe(Interface* subscriber);  // ends one subscription; does nothing when there is none

private:
    std::vector<Interface*> m_subscribers;
};

}  // namespace vl
