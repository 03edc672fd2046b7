// SPDX-License-Identifier: MIT
// Exports what cameras and lights aim at: as records, or as additional keys of the camera or light.
#include "module/keyframe/aimed_object.h"
#include "module/keyframe/key_resample.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"
#include "module/keyframe/times_above.h"
#include "module/keyframe/timetable.h"

namespace {

using zrt::AimedObject;

// What differs between cameras and lights.
struct TargetPass {
    AimedObject (*find)(vl::zr::Node*);
    std::uint32_t recordFlag;  // NF_GEOMETRY if only records with their object take part
    std::uint32_t records;     // the export flags
    std::uint32_t keys;
    std::uint32_t targetFlag;
};

constexpr TargetPass kLights = {AimedObject::LightOf, 0, vl::tk::kLightTargetRecords,
                                vl::tk::kLightTargetKeys, NF_LIGHT_TARGET};
constexpr TargetPass kCameras = {AimedObject::CameraOf, NF_GEOMETRY, vl::tk::kCameraTargetRecords,
                                 vl::tk::kCameraTargetKeys, NF_CAMERA_TARGET};

vl::Vector3<float> WorldTarget(vl::zr::Node* node, const AimedObject& object) {
    vl::Matrix4<double> world;
    node->GetWorldMatrix(&world, 1);
    return world.PointTransform(object.Target());
}

// A record made for the point that an object aims at.
struct TargetRecord {
    ExportNode* target;
    vl::zr::Node* node;  // of the object
    AimedObject object;
};

// A new top-level record at the point that the object aims at, with a key at each of the times if there are
// several.
ExportNode* CreateTargetRecord(ZR_TK& tool, ExportNode* record, const AimedObject& object, std::uint32_t flag,
                               const std::vector<float>& times) {
    vl::zr::Node* node = record->pNode;
    ExportNode* target = tool.NewRecord(nullptr);
    target->dwFlags = NF_ADDED | flag;
    tool.m_pAllNodes->Add(vl::ToWord(target));
    record->pTarget = target;
    tool.m_pRoots->Add(vl::ToWord(target));

    target->vPosition = WorldTarget(node, object);
    target->mWorld.MoveTo(target->vPosition);
    target->mLocal = target->mWorld;

    if (times.size() < 2) return target;
    for (const float time : times) zrt::AddKey<ExportPositionKey>(target->pPosKeys)->fTime = time;
    return target;
}

// Sets the keys to the points that the objects aim at.
void FillKeys(ZR_TK& tool, const std::vector<TargetRecord>& targets) {
    zrt::Timetable table;
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const vl::ArrayOf<ExportPositionKey*> keys(targets[i].target->pPosKeys);
        for (int k = 0; k < keys.Count(); ++k) table.Add(keys[k]->fTime, i, static_cast<std::size_t>(k));
    }
    table.Run(tool.m_pScene, [&](std::size_t i, std::size_t key) {
        const TargetRecord& made = targets[i];
        vl::ArrayOf<ExportPositionKey*>(made.target->pPosKeys)[static_cast<int>(key)]->vValue =
            WorldTarget(made.node, made.object);
    });
}

void RunTargetPass(ZR_TK& tool, const TargetPass& pass) {
    const bool records = (tool.m_dwExportFlags & pass.records) != 0;
    const bool keys = (tool.m_dwExportFlags & pass.keys) != 0;
    std::vector<TargetRecord> made;
    zrt::TimesAbove times;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(tool.m_pAllNodes)) {
        if (record->pNode == nullptr || (record->dwFlags & pass.recordFlag) != pass.recordFlag) continue;
        const AimedObject object = pass.find(record->pNode);
        if (!object || !object.Aims()) continue;

        ExportNode* target = tool.FindNodeRecord(object.TargetNode());
        if (target == nullptr) {
            if (!records || keys) continue;
            made.push_back({CreateTargetRecord(tool, record, object, pass.targetFlag, times.Of(record)),
                            record->pNode, object});
        } else if (records) {
            target->dwFlags |= pass.targetFlag;
            record->pTarget = target;
        } else if (record->pPosKeys != nullptr) {
            zrt::ResamplePositions(zrt::KeyTimesFromZero(target, false), record->pPosKeys, record->vPosition);
        }
    }
    FillKeys(tool, made);
}

}  // namespace

void ZR_TK::LightTargetPass() {
    RunTargetPass(*this, kLights);
}
void ZR_TK::CameraTargetPass() {
    RunTargetPass(*this, kCameras);
}
