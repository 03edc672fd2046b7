// SPDX-License-Identifier: MIT
#include "host/generator.h"
#include "kernix/keep_if.h"
#include "kernix/scene/scene_model.h"

namespace kernix {
namespace {

// A camera or light whose target is removed aims at nothing from then on.
void ReleaseTarget(vl::Interface* object) {
    if (auto* camera = dynamic_cast<CameraModel*>(object)) camera->SetTarget(nullptr);
    if (auto* light = dynamic_cast<LightModel*>(object)) light->SetTarget(nullptr);
}

}  // namespace

void SceneModel::Unlink(NodeModel& node) {
    NodeModel* parent = node.m_parent;
    auto* next = static_cast<NodeModel*>(node.m_pNextSibling);
    vl::zr::Node*& first = parent != nullptr ? parent->m_pFirstChild : m_pFirstNode;
    (node.m_previous != nullptr ? node.m_previous->m_pNextSibling : first) = next;
    (next != nullptr     ? next->m_previous
     : parent != nullptr ? parent->m_lastChild
                         : m_lastNode) = node.m_previous;
    if (auto* selector = dynamic_cast<vl::zr::Selector*>(node.m_pOwner)) {
        selector->m_pFirstChild = first;
        if (selector->m_pSelectedChild == &node) selector->m_pSelectedChild = nullptr;
    }
}

void SceneModel::TakeFromList(NodeModel& node) {
    m_pNodes->RemoveAt(static_cast<int>(node.m_number - m_removedNodes.Before(node.m_number)));
    m_removedNodes.Remove(node.m_number);
}

// Everything that can fail comes before the first change.
void SceneModel::RemoveNode(NodeModel& node) {
    if (node.m_deleted) return;
    std::vector<NodeModel*> gone = {&node};
    std::vector<vl::Interface*> aiming;
    for (std::size_t i = 0; i < gone.size(); ++i) {
        for (NodeModel* child = gone[i]->m_lastChild; child != nullptr; child = child->m_previous) {
            gone.push_back(child);
        }
        const auto subscribers = vl::Ref<vl::InterfaceArray>::Adopt(gone[i]->GetSubscribers(nullptr));
        for (unsigned j = 0; j < subscribers->GetCount(); ++j) aiming.push_back(subscribers->GetAt(j));
    }

    Unlink(node);
    for (vl::Interface* object : aiming) ReleaseTarget(object);
    for (NodeModel* each : gone) {
        each->m_deleted = true;
        TakeFromList(*each);
        ReleaseTarget(each->m_pObject);
        if (m_pCurrentCamera != nullptr && m_pCurrentCamera == each->m_pObject) m_pCurrentCamera = nullptr;
        if (m_defaultCameraNode == each) m_defaultCameraNode = nullptr;
    }
    m_layersHoldDeleted = true;
}

// Removals come in runs that end with a notification: the layers are updated once for all of them.
void SceneModel::Notify(int code, int a, int b) {
    if (m_layersHoldDeleted) {
        for (const auto& layer : m_ownLayers) layer->DropDeletedMembers();
        m_layersHoldDeleted = false;
    }
    if (m_onNotify) m_onNotify(code, a, b);
}

void LayerModel::DropDeletedMembers() {
    KeepIf<vl::zr::Node>(m_pMembers,
                         [](vl::zr::Node* node) { return !static_cast<NodeModel*>(node)->IsDeleted(); });
}

}  // namespace kernix

bool vl::zr::Generator::IsPresent(Node* node, const char* name) {
    const auto* model = dynamic_cast<kernix::NodeModel*>(node);
    return model != nullptr && name != nullptr && model->HasGenerator(name);
}
