// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// While an object of this class exists, nodes with metadata stay in the scene even if they are empty or
// duplicate another mesh; their metadata would be lost otherwise.
class MetadataGuard {
public:
    explicit MetadataGuard(LoadedScene& loaded);
    ~MetadataGuard();

    MetadataGuard(const MetadataGuard&) = delete;
    MetadataGuard& operator=(const MetadataGuard&) = delete;

    // The number of duplicate meshes kept since the last call.
    std::size_t TakeSpared() { return std::exchange(m_spared, 0); }

private:
    bool MayDelete(kernix::NodeModel& node);
    void ReleasePlaceholders();

    kernix::SceneModel& m_scene;
    std::vector<kernix::NodeModel*> m_placeholders;  // nodes given a dummy to preserve their metadata
    std::size_t m_spared = 0;
};

}  // namespace zr
