// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// The host's own view camera. It sees the whole scene at rest from the front, slightly from the right and
// from above, if the picture is at least as wide as high. An empty scene counts as a sphere of radius 1
// around the origin.
class ViewCamera {
public:
    // Adds the camera to the scene as its system node. Must come before the scene gets a scene matrix.
    explicit ViewCamera(LoadedScene& loaded);

    // The cameras to add to the document, for the records that the tools made of the node. nodes: the
    // document node of each record.
    std::vector<NewCamera> CamerasOf(const Tool& tool, const std::vector<std::size_t>& nodes,
                                     const ExportOptions& options) const;

private:
    kernix::NodeModel* m_node;
    double m_distance = 0;  // to the centre of the scene
};

}  // namespace zr
