// SPDX-License-Identifier: MIT
#pragma once

#include "app/services/host.h"

namespace zr::test {

// The host of this process, with its module loaded.
inline Host& TheHost() {
    static Host host("en");
    static const bool isLoaded = (host.LoadModule(), true);
    static_cast<void>(isLoaded);
    return host;
}

}  // namespace zr::test
