// SPDX-License-Identifier: MIT
// Builds the tree of records from the scene's nodes.
#include <unordered_set>
#include <vector>

#include "host/node.h"
#include "module/keyframe/keyframe_tool.h"
#include "module/keyframe/name_text.h"
#include "module/keyframe/node_filter.h"
#include "module/keyframe/record.h"

namespace {

// Makes a record for each accepted node. Roots and children are listed in scene order.
void BuildRecords(ZR_TK& tool) {
    zrt::NodeFilter filter(tool.m_pScene, tool.m_dwExportFlags);
    struct Siblings {
        vl::zr::Node* next;
        ExportNode* parent;
    };
    std::vector<Siblings> pending{{tool.m_pScene->m_pFirstNode, nullptr}};
    while (!pending.empty()) {
        auto& [next, parent] = pending.back();
        vl::zr::Node* node = next;
        if (node == nullptr) {
            pending.pop_back();
            continue;
        }
        next = node->m_pNextSibling;
        const std::uint32_t flags = filter.Flags(node);
        if (flags == 0) continue;
        ExportNode* record = tool.NewRecord(node);
        record->dwFlags = flags;
        record->pSourceNode = node;
        if (parent != nullptr) {
            zrt::AppendChild(parent, record);
        } else {
            zrt::Made(tool.m_pRoots)->Add(vl::ToWord(record));
        }
        pending.push_back({node->m_pFirstChild, record});
    }
}

void AddGroupingRoot(ZR_TK& tool) {
    ExportNode* root = tool.NewRecord(nullptr);
    root->mWorld = tool.m_mScene;
    root->dwFlags = NF_ROOT | NF_GROUP | NF_ADDED;
    for (ExportNode* record : vl::ArrayOf<ExportNode*>(tool.m_pRoots)) zrt::AppendChild(root, record);
    tool.m_pRoots->RemoveAll();
    tool.m_pRoots->Add(vl::ToWord(root));
}

}  // namespace

int ZR_TK::RunBuildHierarchy() {
    if (m_pScene == nullptr || m_dwExportFlags == 0) {
        g_pHost->ReportError(1, "Invalid parameters");
        return 0;
    }
    if ((m_dwExportFlags & vl::tk::kGeometrySplit) != 0) m_dwExportFlags |= vl::tk::kGroupSplit;
    m_mScene.IdentityMatrix();
    m_pScene->GetParam(vl::zr::kParamSceneMatrix, vl::ToWord(&m_mScene), ZR_VALUE_MATRIX);

    BuildRecords(*this);
    if (m_pRoots == nullptr) return 0;
    if ((m_dwExportFlags & vl::tk::kGroupingRoot) != 0 && m_pRoots->m_nCount > 1) AddGroupingRoot(*this);

    if ((m_dwExportFlags & vl::tk::kGroupSplit) != 0) GroupSplit(m_pRoots);
    ComputeLocalMatrices(m_pRoots);
    if (m_bAnimated) {
        AnimatedPivotPass(m_pRoots);
    } else if ((m_dwExportFlags & vl::tk::kStaticPivot) != 0) {
        StaticPivotPass(m_pRoots);
    }
    if ((m_dwExportFlags & vl::tk::kGeometrySplit) != 0) GeometrySplit(m_pRoots);

    zrt::Made(m_pAllNodes);
    CollectAllNodes(m_pRoots);
    return 1;
}

void ZR_TK::ComputeLocalMatrices(vl::Array* records) {
    zrt::WalkRecords(records, [](ExportNode* record) {
        if (record->pParent == nullptr) {
            record->mLocal = record->mWorld;
        } else {
            record->mLocal.SetLocalMatrix(record->pParent->mWorld, record->mWorld);
        }
        return record;
    });
}

void ZR_TK::CollectAllNodes(vl::Array* records) {
    // The tree contains each record once; only the existing list may contain it already.
    const vl::ArrayOf<ExportNode*> all(m_pAllNodes);
    const std::unordered_set<ExportNode*> listed(all.begin(), all.end());
    zrt::WalkRecords(records, [&](ExportNode* record) {
        if (listed.count(record) == 0) m_pAllNodes->Add(vl::ToWord(record));
        return record;
    });
}

ExportNode* ZR_TK::AddNode(ExportNode* parent, const char* name) {
    if (m_pAllNodes == nullptr) return nullptr;
    ExportNode* record = nullptr;
    try {
        record = NewRecord(nullptr);
        FillNewNode(record, parent, name);
        return record;
    } catch (...) {
        if (record != nullptr) UnlistNewNode(record, parent);
        return nullptr;
    }
}

void ZR_TK::FillNewNode(ExportNode* record, ExportNode* parent, const char* name) {
    m_pAllNodes->Add(vl::ToWord(record));
    if (parent != nullptr) {
        zrt::AppendChild(parent, record);
        record->mWorld = parent->mWorld;
    }
    if ((m_dwExportFlags & vl::tk::kAssignNames) == 0) return;
    const int limit = NameLimit();
    if (name == nullptr) name = "";
    if ((m_dwNameFlags & vl::tk::kNamesWide) != 0) {
        record->wszName = new char16_t[limit + 1]();
        AtoWex(name, record->wszName, limit);
    } else {
        record->szName = new char[limit + 1]();
        zrt::CopyNameBounded(record->szName, name, limit + 1);
    }
    if ((m_dwNameFlags & vl::tk::kNamesUnique) != 0 && m_pNameTable != nullptr) MakeUniqueName(record);
}

// The tool still owns the record.
void ZR_TK::UnlistNewNode(ExportNode* record, ExportNode* parent) {
    const auto takeLast = [record](vl::Array* list) {
        const int last = list != nullptr ? list->m_nCount - 1 : -1;
        if (last >= 0 && list->GetAt(last) == vl::ToWord(record)) list->RemoveAt(last);
    };
    takeLast(m_pAllNodes);
    if (parent != nullptr) takeLast(parent->pChildren);
}
