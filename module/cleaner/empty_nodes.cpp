// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <optional>
#include <unordered_map>
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

// Of each node that could become empty: its parent that could, and its place in the scene's list.
class NodeOrder {
public:
    explicit NodeOrder(vl::Array* nodes) {
        int position = 0;
        for (Node* node : vl::ArrayOf<Node*>(nodes)) {
            ++position;
            if (node->m_pObject != nullptr) continue;
            m_places[node].position = position;
            for (Node* child = node->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
                if (child->m_pObject == nullptr) m_places[child].parent = node;
            }
        }
    }

    // The nodes' parents, each once, in the order of the scene's list.
    std::vector<Node*> ParentsOf(vl::ArrayOf<Node*> nodes) const {
        std::vector<Place> parents;
        for (Node* node : nodes) {
            Node* parent = m_places.at(node).parent;
            if (parent != nullptr) parents.push_back({parent, m_places.at(parent).position});
        }
        const auto before = [](const Place& a, const Place& b) { return a.position < b.position; };
        std::sort(parents.begin(), parents.end(), before);
        std::vector<Node*> result;
        for (const Place& place : parents) {
            if (result.empty() || result.back() != place.parent) result.push_back(place.parent);
        }
        return result;
    }

private:
    struct Place {
        Node* parent = nullptr;
        int position = 0;
    };
    std::unordered_map<Node*, Place> m_places;
};

}  // namespace

// A node that goes can leave its parent empty, so the passes repeat until one finds nothing. Objects,
// cameras and lights stay as they are, and with them every other test: after the first pass only the parents
// of what went need another look.
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
        std::optional<NodeOrder> order;
        if (!candidates.IsEmpty()) order.emplace(scene->m_pNodes);
        while (!candidates.IsEmpty()) {
            const int before = nodes.Count();
            const int totalBefore = total;
            zrt::RemoveNodes(candidates, context, record, total);
            const int gone = before - nodes.Count();
            // A host that keeps every node it was told to delete would keep the passes going for ever.
            if (zrt::IsBreak(context) || gone == 0) break;
            if (gone == total - totalBefore) {
                collect(order->ParentsOf(candidates));
            } else {
                collect(nodes);
            }
        }
    });
}
