// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "host/ref.h"
#include "host/scene.h"
#include "host/serializer.h"
#include "module/keyframe/export_node.h"


inline constexpr char kTypeKeyframeTool[] = "TKSAVE";

// The keyframe tools. Each pass stands in a file of its own (hierarchy.cpp, group_split.cpp, key_extraction.cpp
// ...); the operations below that are not virtual are those passes.
class ZR_TK final : public vl::tk::Serializer {
public:
    ZR_TK();
    ~ZR_TK() override;

    const char* GetTypeName() override { return kTypeKeyframeTool; }
    int GetInterfaceVersion() override { return 1; }

    int Process(int unused) override;
    int BuildHierarchy() override;
    int ExtractKeys() override;
    int AssignNames() override;
    int FillTreeView(HWND tree, int unused) override;
    int HasAnimation() override;
    int GetKeyCount(ExportNode* record, int track) override;
    int TimeToFrame(float time) override;
    int GetRotationKey(ExportNode* record, int index, ExportRotationKey* out) override;
    int GetScaleKey(ExportNode* record, int index, ExportScaleKey* out) override;
    int GetPositionKey(ExportNode* record, int index, ExportPositionKey* out) override;
    ExportNode* AddNode(ExportNode* parent, const char* name) override;
    float GetStartTime() override { return m_fStartTime; }
    float GetEndTime() override { return m_fEndTime; }
    float GetCurrentTime() override;
    vl::Array* GetKeyTimes(ExportNode* record, int withAncestors) override;
    void AddKeyTime(vl::Array* times, float time) override;
    void LoadSettings(SettingsStore* store, const char* section) override;
    float MapTime(float time) override { return time * m_fTimeScale + m_fTimeOffset; }
    float GetFrameRate() override;

private:
    void DeleteThis() override { delete this; }

    // Hierarchy (hierarchy.cpp, rest_pose.cpp).
    ExportNode* NewRecord(vl::zr::Node* node);
    void ComputeLocalMatrices(vl::Array* records);
    void CollectAllNodes(vl::Array* records);
    void DecomposeRest(ExportNode* record, const vl::AffineParts* parts);

    // Pivot and split passes (group_split.cpp, geometry_split.cpp, static_pivot.cpp, animated_pivot.cpp).
    void GroupSplit(ExportNode* record);
    void GeometrySplit(ExportNode* record);
    void StaticPivotPass(ExportNode* record);
    void AnimatedPivotPass(ExportNode* record);

    // Keys (key_extraction.cpp, scene_matrix.cpp, time_mapping.cpp).
    void ExtractRecordKeys(ExportNode* record);
    void FoldSceneMatrix();
    void RemapTime();

    // Cameras and lights (target_passes.cpp, orientation_pass.cpp).
    void LightTargetPass();
    void CameraTargetPass();
    void OrientationPass();

    // Merging, resampling, axis flip (key_merge.cpp, key_resample.cpp, axis_flip.cpp).
    void MergeKeys();
    void ResampleKeys();
    void FlipAxes();

    // Names (hierarchy_names.cpp, unique_names.cpp, material_names.cpp).
    void MakeUniqueName(ExportNode* record);
    void MakeMaterialNames();

    // Records that stand outside the tree, which AddNode makes without a parent.
    std::vector<ExportNode*> m_looseRecords;
};
