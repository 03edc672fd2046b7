// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <optional>
#include <unordered_map>
#include <vector>

#include "host/export_node.h"
#include "host/scene.h"
#include "host/serializer.h"
#include "module/keyframe/record.h"
#include "module/keyframe/unique_names.h"

// The keyframe tools, which hosts use as vl::tk::Serializer. Each pass has a file of its own.
class ZR_TK final : public vl::tk::Serializer {
public:
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
    int ProcessKeys() override;

    // A new record with the transforms of the node, or identities for null. The tool owns it, listed or not.
    ExportNode* NewRecord(vl::zr::Node* node);

    // The first record of m_pAllNodes with this pNode; null for none and for null. m_pAllNodes may grow
    // between calls; a record's pNode no longer changes once it is listed there.
    ExportNode* FindNodeRecord(vl::zr::Node* node);

    // m_nMaxNameLength within its valid range. Name buffers hold one character more.
    int NameLimit() const { return std::clamp(m_nMaxNameLength, 4, 512); }

    // Whether the options allow the record to have keys.
    bool MayHaveKeys(const ExportNode& record) const {
        return (m_dwAnimFlags & vl::tk::kGroupKeysOnly) == 0 || (record.dwFlags & (NF_ADDED | NF_GROUP)) != 0;
    }

    // Hierarchy (hierarchy.cpp, rest_pose.cpp). The first two process the given records and all below them.
    void ComputeLocalMatrices(vl::Array* records);
    void CollectAllNodes(vl::Array* records);
    void DecomposeRest(ExportNode* record, const vl::AffineParts* parts);  // null: of mLocal

    // Pivot and split passes, from the given records downwards (group_split.cpp, geometry_split.cpp,
    // static_pivot.cpp, animated_pivot.cpp).
    void GroupSplit(vl::Array* records);
    void GeometrySplit(vl::Array* records);
    void StaticPivotPass(vl::Array* records);
    void AnimatedPivotPass(vl::Array* records);

    // Gives the record's object to a new child for the same node, first or last among the children.
    enum class SplitPlace { kFront, kBack };
    void SplitOff(ExportNode* record, SplitPlace place);

    // Separates turned scale axes from the rest of a record's transform. Returns the record that carries
    // the content afterwards.
    ExportNode* StaticPivot(ExportNode* record);

    // Keys (key_extraction.cpp, scene_matrix.cpp, time_mapping.cpp).
    void ExtractRecordKeys(ExportNode* record);
    bool CanFoldSceneMatrix();  // without a record above any top-level one
    void FoldSceneMatrix();
    void MapTimeRange();  // sets the range; remaps every key if the flags ask for it
    void RemapTime();
    void ApplyTimeMapping();

    // Cameras and lights (target_passes.cpp, orientation_pass.cpp).
    void LightTargetPass();
    void CameraTargetPass();
    void OrientationPass();

    // Merging, resampling, axis flip (key_merge.cpp, key_resample.cpp, axis_flip.cpp).
    void MergeKeys();
    void ResampleKeys();
    void FlipAxes();
    void FlipRestAndKeys(ExportNode* record);

    // Names (hierarchy_names.cpp, material_names.cpp).
    void MakeUniqueName(ExportNode* record);  // and enters it in m_pNameTable, which must exist
    void MakeMaterialNames();

private:
    void DeleteThis() override { delete this; }

    // Runs work and returns its result. On an exception, drops every record and returns 0.
    template <typename Work>
    int OrDropRecords(Work work);
    void DropRecords();

    int RunProcess();
    int RunProcessKeys();
    int RunBuildHierarchy();
    int RunExtractKeys();
    int RunAssignNames();
    void FillNewNode(ExportNode* record, ExportNode* parent, const char* name);
    void UnlistNewNode(ExportNode* record, ExportNode* parent);

    std::vector<zrt::OwnedRecord> m_records;

    // Index of m_pAllNodes for FindNodeRecord, up to m_nIndexed.
    std::unordered_map<vl::zr::Node*, ExportNode*> m_nodeRecords;
    int m_nIndexed = 0;

    std::optional<zrt::UniqueNames> m_uniqueNames;  // the names in m_pNameTable; set with it
};
