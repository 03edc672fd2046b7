// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

namespace zrt {

// An extension that the module offers. create: a new object with count 1, or null when the host's heap gives
// no storage. What its constructor throws is passed on, the storage freed.
struct ExtensionType {
    const char* name;
    vl::Extension* (*create)();
};

// In the order in which they are registered and compared.
extern const ExtensionType kExtensionTypes[4];

}  // namespace zrt
