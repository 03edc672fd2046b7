// SPDX-License-Identifier: MIT
// Attaches the controllers of an animated scene and separates pivots and object offsets from what they move.
// An object-only pivot goes to a child that carries the object; a pivot of the whole group goes between the
// node and its children:
//
//   node                    node
//     children        ->      pivot (NF_PIVOT), carries the object
//                               children
#include "host/controller.h"
#include "host/node.h"
#include "module/keyframe/affine.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/record.h"

namespace {

using vl::Vector3;
using vl::zr::TransformController;

constexpr double kOffsetTolerance = 1e-6;

bool IsZero(const Vector3<float>& v) {
    return v == Vector3<float>{};
}

Vector3<float> PivotOf(TransformController* controller) {
    Vector3<float> pivot;
    if (controller != nullptr) controller->GetOffset(&pivot);
    return pivot;
}

TransformController* FindController(const ExportNode* record, bool acceptOffset) {
    if (record->pSourceNode == nullptr) return nullptr;
    auto* controller =
        static_cast<TransformController*>(record->pSourceNode->GetController(vl::zr::kControllerTransform));
    if (controller == nullptr || controller->IsAnimated(0)) return controller;
    return acceptOffset && !IsZero(PivotOf(controller)) ? controller : nullptr;
}

// The offset of the record's object, which applies before the node's transform; null if there is none.
const vl::Matrix4<double>* ObjectOffset(const ExportNode* record) {
    const vl::zr::Node* node = record->pSourceNode;
    if (node == nullptr || node->m_pObject == nullptr || node->m_pObjectOffset == nullptr) return nullptr;
    return node->m_pObjectOffset->IsIdentity(kOffsetTolerance) ? nullptr : node->m_pObjectOffset;
}

void SetPivotTransform(ExportNode* record, const Vector3<float>& pivot) {
    record->vPosition = zrt::Negated(pivot);
    record->vScale = {1, 1, 1};
    record->qRotation = vl::Quaternion();
    record->mLocal.IdentityMatrix();
    record->mLocal.Offset(record->vPosition);
}

// Gives the object to a child with the object-only pivot or the object offset.
void PlaceObject(ZR_TK& tool, ExportNode* record, const Vector3<float>& pivot,
                 const vl::Matrix4<double>* objectOffset) {
    if (record->pSplit == nullptr) tool.SplitOff(record, ZR_TK::SplitPlace::kBack);
    ExportNode* split = record->pSplit;
    split->dwFlags |= NF_PIVOT;
    record->dwFlags &= ~std::uint32_t{NF_GEOMETRY};

    vl::AffineParts parts;
    if (objectOffset != nullptr) objectOffset->AffineDecompose(parts);
    if (record->pController != nullptr && parts.k == Vector3<float>{1, 1, 1}) {
        // Where there is a controller, the host keeps such an offset equal to the pivot's.
        SetPivotTransform(split, pivot);
        return;
    }
    split->mLocal = *objectOffset;
    split->vPosition = parts.t;
    split->vScale = zrt::SignedScale(parts);
    split->qRotation = parts.q;
    split->mWorld.SetMul(*objectOffset, split->mWorld);
}

// Inserts a pivot of the whole group. Returns the record that carries the content.
ExportNode* PlaceGroup(ZR_TK& tool, ExportNode* record, const Vector3<float>& pivot) {
    ExportNode* content = tool.NewRecord(record->pNode);
    content->dwFlags = NF_PIVOT | (record->dwFlags & NF_GEOMETRY);
    record->dwFlags = (record->dwFlags & ~std::uint32_t{NF_GEOMETRY}) | NF_GROUP | NF_ADDED;
    if (record->pChildren != nullptr) {
        zrt::MoveChildren(record, content);
        content->dwFlags |= NF_GROUP;
    }
    zrt::AppendChild(record, content);
    SetPivotTransform(content, pivot);
    record->mLocal.SetM2(record->mLocal, content->mLocal);
    return content;
}

}  // namespace

void ZR_TK::AnimatedPivotPass(vl::Array* records) {
    const bool acceptOffset = (m_dwExportFlags & vl::tk::kOffsetControllers) != 0;
    zrt::WalkRecords(records, [&](ExportNode* record) {
        TransformController* controller = FindController(record, acceptOffset);
        const vl::Matrix4<double>* objectOffset = ObjectOffset(record);
        if (controller == nullptr && objectOffset == nullptr) return StaticPivot(record);

        DecomposeRest(record, nullptr);
        record->pController = controller;
        const Vector3<float> pivot = PivotOf(controller);
        if (IsZero(pivot) && objectOffset == nullptr) return record;

        const bool movesGroup =
            controller != nullptr && (controller->m_dwFlags & vl::zr::kControllerPivotGroup) != 0;
        const int mode = movesGroup ? 2 : 1;
        if (mode == m_nPivotMode && (record->dwFlags & NF_ADDED) == 0 && objectOffset == nullptr) {
            record->vPivot = pivot;
            if (mode == 1) record->mWorld.Offset(zrt::Negated(pivot));
            return record;
        }
        if (movesGroup) return PlaceGroup(*this, record, pivot);

        const bool hasObject = ((record->dwFlags & NF_GEOMETRY) != 0) ||
                               (record->pSplit != nullptr && (record->pSplit->dwFlags & NF_GEOMETRY) != 0);
        if (hasObject || objectOffset != nullptr) PlaceObject(*this, record, pivot, objectOffset);
        return record;
    });
}
