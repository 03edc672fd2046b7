// SPDX-License-Identifier: MIT
#include "module/keyframe/record.h"

#include "host/node.h"
#include "module/keyframe/keyframe_tool.h"

namespace zrt {

void DestroyExportNode(ExportNode* record) {
    std::vector<ExportNode*> doomed{record};
    for (std::size_t i = 0; i < doomed.size(); ++i) {
        for (ExportNode* child : vl::ArrayOf<ExportNode*>(doomed[i]->pChildren)) doomed.push_back(child);
    }
    for (auto it = doomed.rbegin(); it != doomed.rend(); ++it) {
        ExportNode* gone = *it;
        if (gone->pChildren != nullptr) gone->pChildren->Release();
        delete[] gone->szName;
        delete[] gone->wszName;
        DestroyTrack<ExportPositionKey>(gone->pPosKeys);
        DestroyTrack<ExportRotationKey>(gone->pRotKeys);
        DestroyTrack<ExportScaleKey>(gone->pScaleKeys);
        delete gone;
    }
}

void AppendChild(ExportNode* parent, ExportNode* child) {
    if (parent->pChildren == nullptr) parent->pChildren = g_pHost->CreateArray();
    child->pParent = parent;
    parent->pChildren->Add(vl::ToWord(child));
}

void MoveChildren(ExportNode* from, ExportNode* to) {
    if (from->pChildren == nullptr) return;
    for (ExportNode* child : vl::ArrayOf<ExportNode*>(from->pChildren)) AppendChild(to, child);
    from->pChildren->RemoveAll();
}

}  // namespace zrt

ExportNode* ZR_TK::NewRecord(vl::zr::Node* node) {
    auto* record = new ExportNode();
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
