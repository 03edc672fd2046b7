// SPDX-License-Identifier: MIT
// Groups that show an object move it to a child of its own:
//
//   node with a mesh        group
//     child           ->      mesh (NF_SPLIT)
//                             child
#include "host/node.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/mesh_content.h"
#include "module/keyframe/record.h"

namespace {

// A node without an object of its own to show: nothing, an empty mesh, or a bone.
bool IsPlainNode(const vl::zr::Node* node) {
    vl::zr::Object3D* object = node->m_pObject;
    if (object == nullptr) return true;
    if (object->IsKindOf(vl::zr::kKindRenderable)) return !zrt::QueryMeshContent(object);
    return !object->IsKindOf(vl::zr::kKindLight) && !object->IsKindOf(vl::zr::kKindCamera) &&
           object->IsKindOf(vl::zr::kKindBone);
}

}  // namespace

void ZR_TK::SplitOff(ExportNode* record, SplitPlace place) {
    ExportNode* split = NewRecord(record->pNode);
    split->dwFlags = (record->dwFlags & NF_GEOMETRY) | NF_SPLIT;
    split->mLocal.IdentityMatrix();
    record->dwFlags = (record->dwFlags & ~std::uint32_t{NF_GEOMETRY}) | NF_GROUP | NF_ADDED;
    record->pSplit = split;
    zrt::AppendChild(record, split);
    if (place == SplitPlace::kFront) {
        const int last = record->pChildren->m_nCount - 1;
        record->pChildren->RemoveAt(last);
        record->pChildren->InsertAt(0, vl::ToWord(split));
    }
}

void ZR_TK::GroupSplit(vl::Array* records) {
    zrt::WalkRecords(records, [this](ExportNode* record) -> ExportNode* {
        if (record->pChildren == nullptr) return nullptr;
        record->dwFlags |= NF_GROUP;
        if (record->pNode != nullptr && !IsPlainNode(record->pNode)) SplitOff(record, SplitPlace::kFront);
        return record;
    });
}
