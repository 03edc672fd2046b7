// SPDX-License-Identifier: MIT
#pragma once

namespace vl::zr {
class Scene;
}

namespace zr {

class Host;

// Lets the user clean the scene in the module's dialog; returns when it is closed. Throws
// std::runtime_error where no window can be opened.
void RunCleanDialog(Host& host, vl::zr::Scene& scene);

}  // namespace zr
