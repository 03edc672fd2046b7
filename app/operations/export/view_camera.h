// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The host's own view camera. It sees the whole scene at rest from the front, somewhat from the right and
// from above, in a picture of any shape that is at least as wide as high. An empty scene counts as a ball of
// one unit around the origin.
class ViewCamera {
public:
    // Adds the camera to the scene, as its system node. Before the scene gets a scene matrix.
    explicit ViewCamera(LoadedScene& loaded);

    // The camera of the node that stands for its record, if the tools made one. nodes: of each record, in the
    // document.
    std::vector<NewCamera> CamerasOf(const Tool& tool, const std::vector<std::size_t>& nodes,
                                     const ExportOptions& options) const;

private:
    kernix::NodeModel* m_node;
    double m_distance = 0;  // to the middle of the scene
};

}  // namespace zr
