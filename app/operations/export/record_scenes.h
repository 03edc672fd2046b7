// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <unordered_map>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Which scenes of the document show what the records stand for.
class RecordScenes {
public:
    // Both outlive it.
    RecordScenes(const LoadedScene& loaded, const Tool& tool);

    // Of a record at the top, or below a grouping root: the scenes that show it, ascending; none for what
    // stands outside of every scene. A level of detail counts as where it is shown.
    std::vector<std::size_t> Of(const ExportNode& record) const;

    // Whether the record stands for a level of detail that the document hangs nowhere.
    bool HangsNowhere(const ExportNode& record) const;

    // The records at the top of each scene of the document, in the scene's order.
    std::vector<std::vector<const ExportNode*>> Roots() const;

private:
    std::optional<std::size_t> SourceOf(const ExportNode& record) const;

    const LoadedScene& m_loaded;
    const Tool& m_tool;
    std::unordered_map<std::size_t, std::vector<std::size_t>> m_scenes;         // that list a node as a root
    std::unordered_map<const ExportNode*, std::vector<std::size_t>> m_aimedAt;  // the same, of new targets
};

// Puts the records below a grouping root that stand in other scenes below roots of their own, so that each
// scene has its root: one for each set of scenes that share nodes.
void GroupByScenes(const LoadedScene& loaded, const Tool& tool);

}  // namespace zr
