// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "host/export_node.h"
#include "host/ref.h"
#include "host/serializer.h"

namespace zr {

using Tool = vl::Ref<vl::tk::Serializer>;

// Runs the keyframe tools on the scene with this active animation; null: with none. The records point into
// the scene. A grouping root is divided by the scenes of the document (GroupByScenes). Throws
// std::runtime_error when there is nothing to export.
Tool RunTool(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
             const ExportOptions& options);

// Processes the keys of another animation on the records of a finished run. Returns false, leaving the
// records unchanged, if the animation needs other records.
bool RunToolAgain(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation);

// Whether the tools change the animation's time.
inline bool MapsTime(const vl::tk::Serializer& tool) {
    return tool.m_fTimeScale != 1 || tool.m_fTimeOffset != 0;
}

inline vl::ArrayOf<ExportNode*> AllRecords(const Tool& tool) {
    return vl::ArrayOf<ExportNode*>(tool->m_pAllNodes);
}

// Whether the tools report the keys of the record, if it has any.
inline bool ReportsKeys(const ExportNode& record, const ExportOptions& options) {
    return !options.Has(vl::tk::kGroupKeysOnly) || (record.dwFlags & NF_GROUP) != 0;
}

// Whether the record is in the original place of its node, below a pivot that was split off.
inline bool StandsBelowPivot(const ExportNode& record) {
    const bool belowStaticPivot = record.pSplit != nullptr && (record.pSplit->dwFlags & NF_STATICPIVOT) != 0;
    const bool belowPivotGroup = (record.dwFlags & NF_PIVOT) != 0 && (record.dwFlags & NF_SPLIT) == 0;
    return belowStaticPivot || belowPivotGroup;
}

}  // namespace zr
