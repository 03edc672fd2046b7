// SPDX-License-Identifier: MIT
#include "host/generator.h"
#include "kernix/scene/scene_model.h"

namespace kernix {
namespace {

// What aims at a node that goes aims at nothing from then on.
void ReleaseSubscribers(NodeModel& node) {
    const auto subscribers = vl::Ref<vl::InterfaceArray>::Adopt(node.GetSubscribers(nullptr));
    for (unsigned i = 0; i < subscribers->GetCount(); ++i) {
        vl::Interface* subscriber = subscribers->GetAt(i);
        if (auto* camera = dynamic_cast<CameraModel*>(subscriber)) camera->SetTarget(nullptr);
        if (auto* light = dynamic_cast<LightModel*>(subscriber)) light->SetTarget(nullptr);
    }
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

void SceneModel::RemoveNode(NodeModel& node) {
    if (node.m_deleted) return;
    Unlink(node);
    std::vector<NodeModel*> open = {&node};
    while (!open.empty()) {
        NodeModel* gone = open.back();
        open.pop_back();
        for (NodeModel* child = gone->m_lastChild; child != nullptr; child = child->m_previous)
            open.push_back(child);
        gone->m_deleted = true;
        TakeFromList(*gone);
        ReleaseSubscribers(*gone);
        if (auto* camera = dynamic_cast<CameraModel*>(gone->m_pObject)) {
            camera->SetTarget(nullptr);
            if (m_pCurrentCamera == camera) m_pCurrentCamera = nullptr;
        }
        if (auto* light = dynamic_cast<LightModel*>(gone->m_pObject)) light->SetTarget(nullptr);
        if (m_defaultCameraNode == gone) m_defaultCameraNode = nullptr;
    }
    m_layersHoldDeleted = true;
}

// Removals come in runs that end with a notification: the layers are gone through once for all of them.
void SceneModel::Notify(int code, int a, int b) {
    if (m_layersHoldDeleted) {
        for (const auto& layer : m_ownLayers) layer->DropDeletedMembers();
        m_layersHoldDeleted = false;
    }
    if (m_onNotify) m_onNotify(code, a, b);
}

void LayerModel::DropDeletedMembers() {
    std::vector<vl::zr::Node*> kept;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(m_pMembers)) {
        if (!static_cast<NodeModel*>(node)->IsDeleted()) kept.push_back(node);
    }
    if (kept.size() == static_cast<std::size_t>(vl::ArrayOf<vl::zr::Node*>(m_pMembers).Count())) return;
    m_pMembers->RemoveAll();
    for (vl::zr::Node* node : kept) m_pMembers->Add(vl::ToWord(node));
}

}  // namespace kernix

bool vl::zr::Generator::IsPresent(Node* node, const char* name) {
    const auto* model = dynamic_cast<kernix::NodeModel*>(node);
    return model != nullptr && name != nullptr && model->HasGenerator(name);
}
