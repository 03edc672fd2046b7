// SPDX-License-Identifier: MIT
#include "host/change_record.h"
#include "host/node.h"
#include "host/object.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Mesh;
using vl::zr::Node;

namespace {

// A repeated node below another one waits for the next pass as long as it has a child.
constexpr int kMaxDeletionPasses = 10;

}  // namespace

int CCleanerImpl::RemoveMeshDupes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr) return 0;
    m_dupIndex.Clear();
    vl::Ref<vl::Array> dupes = zrt::NewList();
    for (Node* node : vl::ArrayOf<Node*>(scene->m_pNodes)) {
        if (zrt::IsBreak(context)) break;
        vl::zr::Object3D* object = node->m_pObject;
        if (object == nullptr || (node->m_dwFlags & vl::zr::kNodeSystem) != 0) continue;
        if (!object->IsTypeOf("zr_mesh")) continue;
        if (IsDuplicateMesh(node, static_cast<Mesh*>(object))) dupes->Add(vl::ToWord(node));
    }
    m_dupIndex.Clear();

    int count = 0;
    vl::Ref<vl::Array> deferred = zrt::NewList();
    for (int pass = 0; pass < kMaxDeletionPasses; ++pass) {
        deferred->RemoveAll();
        for (Node* node : vl::ArrayOf<Node*>(dupes.Get())) {
            if (zrt::IsBreak(context)) break;
            if (node->m_pFirstChild != nullptr) {
                deferred->Add(vl::ToWord(node));
                continue;
            }
            if (record != nullptr) record->RecordNodeRemoval(node, 0);
            node->Delete(0);
            ++count;
        }
        if (zrt::IsBreak(context) || deferred->m_nCount == 0) break;
        std::swap(dupes, deferred);
    }
    zrt::NotifyRemoved(scene);
    return count;
}

bool CCleanerImpl::IsDuplicateMesh(Node* node, Mesh* mesh) {
    return m_dupIndex.FindOrAdd(node, mesh);
}
