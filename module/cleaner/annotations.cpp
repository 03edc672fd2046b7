// SPDX-License-Identifier: MIT
#include <unordered_set>

#include "host/node.h"
#include "host/object.h"
#include "host/var.h"
#include "host/viewport.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Layer;
using vl::zr::Node;

namespace {

std::unordered_set<Node*> MembersOfLayers(vl::InterfaceArray* array) {
    const zrt::InterfacesOf<Layer> layers(array);
    std::unordered_set<Node*> members;
    for (unsigned i = 0; i < layers.Count(); ++i) {
        for (Node* node : vl::ArrayOf<Node*>(layers[i]->m_pMembers)) members.insert(node);
    }
    return members;
}

}  // namespace

// The cleared metadata is not recorded.
int CCleanerImpl::RemoveMetadata(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* /*record*/) {
    if (scene == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& count) {
        for (Node* node : vl::ArrayOf<Node*>(scene->m_pNodes)) {
            if (zrt::IsBreak(context)) break;
            vl::VarMap* metadata = node->GetMetadata(false);
            if (metadata == nullptr) continue;
            metadata->Clear();
            ++count;
        }
    });
}

int CCleanerImpl::RemoveNotesAndEtc(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& count) {
        const std::unordered_set<Node*> members = MembersOfLayers(scene->m_pLayers);
        const vl::Ref<vl::Array> list = zrt::NewList();
        vl::ArrayOf<Node*> candidates(list.Get());
        for (Node* node : vl::ArrayOf<Node*>(scene->m_pNodes)) {
            if (zrt::IsBreak(context)) break;
            if (node->m_pObject == nullptr || node->m_pObject->GetType() != vl::zr::kTypeNote) continue;
            if (!members.contains(node)) candidates.Add(node);
        }
        zrt::RemoveNodes(candidates, context, record, count);
    });
}
