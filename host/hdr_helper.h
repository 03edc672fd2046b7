// SPDX-License-Identifier: MIT
#pragma once

#include "host/extension.h"

class ChangeRecord;

namespace vl::zr {
class Scene;
}

inline constexpr char kTypeHdrHelper[] = "HDR_HELPER_75A199E1_E98C_4cdc_8140_AB7F04411F97_";

// Manages a scene's environment. The host or another module offers it.
// The order of functions and fields is the binary interface (host/api.h).
class zr_HDR_HELPER : public vl::Extension {
public:
    // Removes environment lights and backdrops from the scene and returns how many. context and record may be
    // null. On the interface thread.
    virtual int RemoveEnvironment(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) = 0;
};
