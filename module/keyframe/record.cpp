// SPDX-License-Identifier: MIT
#include "module/keyframe/record.h"

#include <utility>

#include "host/node.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {

void RecordDeleter::operator()(ExportNode* record) const {
    if (record->pChildren != nullptr) record->pChildren->Release();
    delete[] record->szName;
    delete[] record->wszName;
    DestroyTrack<ExportPositionKey>(record->pPosKeys);
    DestroyTrack<ExportRotationKey>(record->pRotKeys);
    DestroyTrack<ExportScaleKey>(record->pScaleKeys);
    delete record;
}

void AppendChild(ExportNode* parent, ExportNode* child) {
    Made(parent->pChildren)->Add(vl::ToWord(child));
    child->pParent = parent;
}

void MoveChildren(ExportNode* from, ExportNode* to) {
    if (from->pChildren == nullptr) return;
    for (ExportNode* child : vl::ArrayOf<ExportNode*>(from->pChildren)) AppendChild(to, child);
    from->pChildren->RemoveAll();
}

}  // namespace zrt

ExportNode* ZR_TK::NewRecord(vl::zr::Node* node) {
    zrt::OwnedRecord owned(new ExportNode());
    m_records.push_back(std::move(owned));
    ExportNode* record = m_records.back().get();
    record->pNode = node;
    if (node == nullptr) {
        record->mLocal.IdentityMatrix();
        record->mWorld.IdentityMatrix();
    } else {
        const int isStatic = m_bAnimated ? 0 : 1;
        node->GetWorldMatrix(&record->mWorld, isStatic);
        node->GetLocalMatrix(&record->mLocal, isStatic);
    }
    return record;
}

ExportNode* ZR_TK::FindNodeRecord(vl::zr::Node* node) {
    const vl::ArrayOf<ExportNode*> all(m_pAllNodes);
    for (; m_nIndexed < all.Count(); ++m_nIndexed) {
        ExportNode* record = all[m_nIndexed];
        if (record->pNode != nullptr) m_nodeRecords.try_emplace(record->pNode, record);
    }
    const auto found = m_nodeRecords.find(node);
    return found != m_nodeRecords.end() ? found->second : nullptr;
}
