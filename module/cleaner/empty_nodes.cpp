// SPDX-License-Identifier: MIT
#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

#include "host/node.h"
#include "host/object.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Node;
using vl::zr::Object3D;

namespace {

bool IsNodeTargetOfCameraOrLight(Node* node) {
    const auto array = vl::Ref<vl::InterfaceArray>::Adopt(node->GetSubscribers(nullptr));
    const zrt::InterfacesOf<vl::Interface> subscribers(array.Get());
    for (unsigned i = 0; i < subscribers.Count(); ++i) {
        vl::Interface* subscriber = subscribers[i];
        auto* object = dynamic_cast<Object3D*>(subscriber);
        if (object == nullptr) {
            auto* owner = dynamic_cast<Node*>(subscriber);
            object = owner != nullptr ? owner->m_pObject : nullptr;
        }
        if (object != nullptr &&
            (object->IsKindOf(vl::zr::kKindLight) || object->IsKindOf(vl::zr::kKindCamera))) {
            return true;
        }
    }
    return false;
}

bool IsEmpty(Node* node) {
    return node->m_pObject == nullptr && node->m_pFirstChild == nullptr && !IsNodeTargetOfCameraOrLight(node);
}

// Links from parents to children, where both can become empty.
class Parents {
public:
    explicit Parents(vl::Array* nodes) {
        int position = 0;
        for (Node* node : vl::ArrayOf<Node*>(nodes)) {
            ++position;
            if (node->m_pObject != nullptr) continue;
            for (Node* child = node->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
                if (child->m_pObject == nullptr) m_links.push_back({child, node, position});
            }
        }
        std::sort(m_links.begin(), m_links.end(),
                  [](const Link& a, const Link& b) { return std::less<>()(a.child, b.child); });
    }

    // Each once, in the order of the scene's list.
    std::vector<Node*> Of(vl::ArrayOf<Node*> nodes) const {
        std::vector<Link> found;
        for (Node* node : nodes) {
            const auto link =
                std::lower_bound(m_links.begin(), m_links.end(), node,
                                 [](const Link& a, Node* child) { return std::less<>()(a.child, child); });
            if (link != m_links.end() && link->child == node) found.push_back(*link);
        }
        std::sort(found.begin(), found.end(),
                  [](const Link& a, const Link& b) { return a.position < b.position; });
        std::vector<Node*> parents;
        for (const Link& link : found) {
            if (parents.empty() || parents.back() != link.parent) parents.push_back(link.parent);
        }
        return parents;
    }

private:
    struct Link {
        Node* child;
        Node* parent;
        int position;  // of the parent in the scene's list
    };
    std::vector<Link> m_links;  // by child
};

}  // namespace

// Removing a node can leave its parent empty, so the passes repeat until one finds nothing. Objects, cameras
// and lights do not change, so no other condition does: after the first pass only the parents of removed
// nodes need another look.
int CCleanerImpl::RemoveEmptyNodes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr || scene->m_pNodes == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& total) {
        const vl::ArrayOf<Node*> nodes(scene->m_pNodes);
        const vl::Ref<vl::Array> list = zrt::NewList();
        vl::ArrayOf<Node*> candidates(list.Get());
        const auto collect = [&](const auto& from) {
            list->RemoveAll();
            for (Node* node : from) {
                if (zrt::IsBreak(context)) break;
                if (IsEmpty(node)) candidates.Add(node);
            }
        };

        collect(nodes);
        std::optional<Parents> parents;
        if (!candidates.IsEmpty()) parents.emplace(scene->m_pNodes);
        while (!candidates.IsEmpty()) {
            const int before = nodes.Count();
            const int totalBefore = total;
            zrt::RemoveNodes(candidates, context, record, total);
            const int gone = before - nodes.Count();
            // A host that deletes none of the nodes would make the passes repeat for ever.
            if (zrt::IsBreak(context) || gone == 0) break;
            if (gone == total - totalBefore) {
                collect(parents->Of(candidates));
            } else {
                collect(nodes);
            }
        }
    });
}
