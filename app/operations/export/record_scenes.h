// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Which scenes of the document show which records.
class RecordScenes {
public:
    // Both must outlive it.
    RecordScenes(const LoadedScene& loaded, const Tool& tool);

    // The scenes that show a record which is a root or a child of a grouping root, ascending; empty for a
    // record outside every scene. A level of detail belongs to the scenes of the node it stands for.
    std::vector<std::size_t> Of(const ExportNode& record) const;

    // Whether the record is that of a level of detail, which has no parent in the document.
    bool IsDetachedLevel(const ExportNode& record) const;

    // The root records of each scene of the document, in the scene's order.
    std::vector<std::vector<const ExportNode*>> Roots() const;

private:
    std::optional<std::size_t> SourceOf(const ExportNode& record) const;

    const LoadedScene& m_loaded;
    const Tool& m_tool;
    // The scenes that list a root node.
    std::unordered_map<std::size_t, std::vector<std::size_t>> m_scenes;
    // The scenes of the cameras and lights that aim at a new target record.
    std::unordered_map<const ExportNode*, std::vector<std::size_t>> m_aimedAt;
};

// Gives records below a grouping root that belong to other scenes grouping roots of their own: one for each
// distinct set of scenes.
void GroupByScenes(const LoadedScene& loaded, const Tool& tool);

}  // namespace zr
