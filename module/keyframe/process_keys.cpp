// SPDX-License-Identifier: MIT
// Extracts the keys of another animation into the existing records.
#include "host/controller.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/aimed_object.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

// Whether the record is of a camera or light that is, or may be, placed away from its node: the records
// incorporate that only once.
bool IsPlaced(const ZR_TK& tool, const ExportNode& record) {
    using namespace vl::tk;
    if (record.pNode == nullptr || record.pNode->m_pObject == nullptr) return false;
    zrt::AimedObject object = zrt::AimedObject::CameraOf(record.pNode);
    if (!object) object = zrt::AimedObject::LightOf(record.pNode);
    if (!object) return false;
    constexpr std::uint32_t kTargets =
        kLightTargetRecords | kLightTargetKeys | kCameraTargetRecords | kCameraTargetKeys;
    if (object.TargetNode() != nullptr || (tool.m_dwExportFlags & kTargets) != 0) return true;
    return (tool.m_dwExportFlags & kAllChoices) != 0 ? !object.Shown(record.pNode).IsIdentity(0)
                                                     : object.Position() != vl::Vector3<float>();
}

// The current transform relative to the parent record, computed as when the hierarchy was built.
vl::Matrix4<double> CurrentLocal(const ZR_TK& tool, const ExportNode& record) {
    vl::Matrix4<double> world;
    record.pSourceNode->GetWorldMatrix(&world, 0);
    if (record.pParent == nullptr) return world;
    vl::Matrix4<double> parent = tool.m_mScene;
    if (record.pParent->pNode != nullptr) record.pParent->pNode->GetWorldMatrix(&parent, 0);
    vl::Matrix4<double> local;
    local.SetLocalMatrix(parent, world);
    return local;
}

// Whether a child of the record carries the group's pivot.
bool HasGroupPivot(const ExportNode& record) {
    const vl::ArrayOf<ExportNode*> children(record.pChildren);
    return (record.pController->m_dwFlags & vl::zr::kControllerPivotGroup) != 0 && children.Count() == 1 &&
           (children[0]->dwFlags & NF_PIVOT) != 0;
}

void Reset(ZR_TK& tool, ExportNode& record) {
    record.mLocal = CurrentLocal(tool, record);
    if (HasGroupPivot(record)) {
        vl::Vector3<float> pivot;
        record.pController->GetOffset(&pivot);
        vl::Matrix4<double> content;
        content.IdentityMatrix();
        content.Offset(zrt::Negated(pivot));
        record.mLocal.SetM2(record.mLocal, content);
    }
    zrt::DestroyTrack<ExportPositionKey>(record.pPosKeys);
    zrt::DestroyTrack<ExportRotationKey>(record.pRotKeys);
    zrt::DestroyTrack<ExportScaleKey>(record.pScaleKeys);
}

}  // namespace

int ZR_TK::RunProcessKeys() {
    using namespace vl::tk;
    if (!m_bAnimated || m_pAllNodes == nullptr || (m_dwExportFlags & kExtractKeys) == 0) return 0;
    if (m_pScene->IsAnimated() == 0) return 0;
    std::vector<ExportNode*> moved;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(m_pAllNodes)) {
        if ((record->dwFlags & NF_POST) != 0 || IsPlaced(*this, *record)) return 0;
        if (record->pController != nullptr) moved.push_back(record);
    }
    if (!CanFoldSceneMatrix()) return 0;

    for (ExportNode* record : moved) Reset(*this, *record);
    RunExtractKeys();
    for (ExportNode* record : moved) DecomposeRest(record, nullptr);
    if ((m_dwExportFlags & kMergeKeys) != 0) MergeKeys();
    if ((m_dwAnimFlags & kResampleKeys) != 0) ResampleKeys();
    if ((m_dwExportFlags & kFlipAxes) != 0) {
        for (ExportNode* record : moved) {
            record->mLocal.Flip();
            FlipRestAndKeys(record);
        }
    }
    MapTimeRange();
    return 1;
}
