// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "app/scene/loaded_scene.h"

namespace zr {

// Keeps nodes in a scene, as long as they have metadata, that would go because they show nothing or repeat
// another mesh: what the metadata says of them would be lost. Watches the scene while it lives.
class MetadataGuard {
public:
    explicit MetadataGuard(LoadedScene& loaded);
    ~MetadataGuard();

    MetadataGuard(const MetadataGuard&) = delete;
    MetadataGuard& operator=(const MetadataGuard&) = delete;

    // How many repeated meshes were not deleted since the last call.
    std::size_t TakeSpared() { return std::exchange(m_spared, 0); }

private:
    bool MayDelete(kernix::NodeModel& node);
    void LetGo();

    kernix::SceneModel& m_scene;
    std::vector<kernix::NodeModel*> m_placeholders;  // nodes that have a dummy for their metadata's sake
    std::size_t m_spared = 0;
};

}  // namespace zr
