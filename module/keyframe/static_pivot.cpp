// SPDX-License-Identifier: MIT
// A scale along turned axes cannot be written as translation, rotation and scale. The turn moves into a
// record of its own:
//
//   node                    pivot: scale, rotation, translation
//     children        ->      node: turn of the scale axes
//                               children
#include <cmath>

#include "host/node.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

float StretchAngle(const ExportNode* record) {
    if (record->pNode != nullptr && record->pNode->GetObjectOfKind(vl::zr::kKindCamera) != nullptr) return 0;
    vl::Vector3<float> translation, rotation, scale, stretch;
    vl::Vector4<float> perspective;
    record->mLocal.Decompose(translation, rotation, scale, stretch, perspective);
    return vl::AngleAxis(stretch).angle;
}

}  // namespace

ExportNode* ZR_TK::StaticPivot(ExportNode* record) {
    if ((record->dwFlags & NF_SPLIT) != 0) return record;
    if (std::abs(StretchAngle(record)) <= zrt::kTurnTolerance ||
        (m_dwExportFlags & vl::tk::kNoStaticPivot) != 0) {
        DecomposeRest(record, nullptr);
        return record;
    }

    vl::AffineParts parts;
    record->mLocal.AffineDecompose(parts);

    ExportNode* content = NewRecord(record->pNode);
    zrt::MoveChildren(record, content);
    const bool isGroup = content->pChildren != nullptr || (record->dwFlags & NF_GROUP) != 0;
    content->dwFlags = (isGroup ? NF_GROUP : 0u) | (record->dwFlags & NF_GEOMETRY);
    content->pSplit = record;
    content->qRotation = parts.u;
    content->mWorld = record->mWorld;
    content->mLocal.IdentityMatrix();
    content->mLocal.Rotate(parts.u);
    zrt::AppendChild(record, content);

    vl::Quaternion back = parts.u;
    back.Invert();
    record->dwFlags = (record->dwFlags & ~std::uint32_t{NF_GEOMETRY}) | NF_STATICPIVOT | NF_GROUP | NF_ADDED;
    record->pNode = nullptr;
    record->qRotation = back * parts.q;
    record->vScale = zrt::SignedScale(parts);
    record->vPosition = parts.t;
    record->mLocal.IdentityMatrix();
    record->mLocal.Scale(record->vScale);
    record->mLocal.Rotate(record->qRotation);
    record->mLocal.Offset(record->vPosition);
    record->mWorld.SetM2(content->mWorld, content->mLocal);
    return content;
}

void ZR_TK::StaticPivotPass(vl::Array* records) {
    zrt::WalkRecords(records, [this](ExportNode* record) { return StaticPivot(record); });
}
