// SPDX-License-Identifier: MIT
#pragma once

#include "host/api.h"

namespace vl::zr {

class Node;

// A generator recreates the content of a node whenever the host shows it.
class KERNIX_API Generator {
public:
    // True when a generator of that name is present for the node. False for a null name.
    static bool IsPresent(Node* node, const char* name);
};

}  // namespace vl::zr
