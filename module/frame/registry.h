// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

namespace zrt {

// An extension that the module offers. create: returns a new object with a count of 1, or null if the host's
// heap has no memory. Passes on what the constructor throws, with the storage freed.
struct ExtensionType {
    const char* name;
    vl::Extension* (*create)();
};

// In the order in which they are registered and looked up.
extern const ExtensionType kExtensionTypes[4];

}  // namespace zrt
