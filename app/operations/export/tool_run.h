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

// Runs the keyframe tools on the scene with the animation as its active one; null: without any. The records
// point into the scene; a grouping root stands for each scene of the document that was loaded. Throws
// std::runtime_error when nothing is to be exported.
Tool RunTool(Host& host, LoadedScene& loaded, kernix::AnimationModel* animation,
             const ExportOptions& options);

// Processes the keys of another animation on the records of a finished run. False, with the records
// unchanged, when it needs other records.
bool RunToolAgain(const Tool& tool, kernix::SceneModel& scene, kernix::AnimationModel& animation);

// Whether the animation's time is mapped to another range.
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

// Whether the record is where its node's object was, below a pivot that was split off.
inline bool StandsBelowPivot(const ExportNode& record) {
    const bool belowStaticPivot = record.pSplit != nullptr && (record.pSplit->dwFlags & NF_STATICPIVOT) != 0;
    const bool belowPivotGroup = (record.dwFlags & NF_PIVOT) != 0 && (record.dwFlags & NF_SPLIT) == 0;
    return belowStaticPivot || belowPivotGroup;
}

}  // namespace zr
