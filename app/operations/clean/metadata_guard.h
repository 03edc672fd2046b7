// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// While an object of this class exists, nodes with metadata stay in the scene even when they show nothing or
// repeat another mesh, since their metadata would be lost.
class MetadataGuard {
public:
    explicit MetadataGuard(LoadedScene& loaded);
    ~MetadataGuard();

    MetadataGuard(const MetadataGuard&) = delete;
    MetadataGuard& operator=(const MetadataGuard&) = delete;

    // The number of repeated meshes that were kept since the last call.
    std::size_t TakeSpared() { return std::exchange(m_spared, 0); }

private:
    bool MayDelete(kernix::NodeModel& node);
    void LetGo();

    kernix::SceneModel& m_scene;
    std::vector<kernix::NodeModel*> m_placeholders;  // nodes that have a dummy for their metadata's sake
    std::size_t m_spared = 0;
};

}  // namespace zr
