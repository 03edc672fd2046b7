// SPDX-License-Identifier: MIT
#include "kernix/scene/scene_model.h"

#include <algorithm>
#include <string_view>
#include <unordered_map>

#include "kernix/array.h"
#include "kernix/keep_if.h"
#include "kernix/scene/change_record_model.h"

namespace kernix {
namespace {

template <typename T>
void KeepDistinct(std::vector<T*>& list) {
    std::sort(list.begin(), list.end());
    list.erase(std::unique(list.begin(), list.end()), list.end());
}

}  // namespace

SceneModel::SceneModel()
    : m_nodeWords(vl::Ref<vl::Array>::AdoptNew(CreateArray())),
      m_materialWords(vl::Ref<vl::Array>::AdoptNew(CreateArray())),
      m_animationWords(vl::Ref<vl::Array>::AdoptNew(CreateArray())) {
    m_pNodes = m_nodeWords.Get();
    m_pMaterials = m_materialWords.Get();
    m_pAnimations = m_animationWords.Get();
    m_sceneMatrix.IdentityMatrix();
}

SceneModel::~SceneModel() {
    // Cameras and lights unsubscribe from the nodes they aim at, so they are destroyed before any node.
    for (const auto& node : m_ownNodes) node->SetObject(nullptr);
}

NodeModel* SceneModel::AddNode(NodeModel* parent, std::string name) {
    const std::size_t number = m_ownNodes.size();
    m_ownNodes.push_back(vl::Ref<NodeModel>::AdoptNew(new NodeModel(*this, std::move(name))));
    NodeModel* node = m_ownNodes.back().Get();
    NodeModel*& last = parent != nullptr ? parent->m_lastChild : m_lastNode;
    vl::zr::Node*& first = parent != nullptr ? parent->m_pFirstChild : m_pFirstNode;
    node->m_parent = parent;
    node->m_previous = last;
    (last != nullptr ? last->m_pNextSibling : first) = node;
    last = node;
    node->m_number = static_cast<std::uint32_t>(number);
    m_removedNodes.Append();
    m_pNodes->Add(vl::ToWord<vl::zr::Node*>(node));
    return node;
}

MaterialModel* SceneModel::AddMaterial(std::optional<std::string> name, std::string content) {
    const auto id = static_cast<std::uint32_t>(m_ownMaterials.size());
    m_ownMaterials.push_back(
        vl::Ref<MaterialModel>::AdoptNew(new MaterialModel(*this, id, std::move(name), std::move(content))));
    MaterialModel* material = m_ownMaterials.back().Get();
    m_mergedInto.push_back(material);
    m_pMaterials->Add(vl::ToWord<vl::zr::Material*>(material));
    return material;
}

AnimationModel* SceneModel::AddAnimation(std::u16string name) {
    auto animation = vl::Ref<AnimationModel>::AdoptNew(new AnimationModel);
    animation->m_name = std::move(name);
    animation->m_scene.Set(this);
    m_ownAnimations.push_back(animation);
    m_pAnimations->Add(vl::ToWord<vl::zr::Animation*>(animation.Get()));
    if (m_pAnimations->m_nCount == 1) SetActiveAnimation(animation.Get());
    return animation.Get();
}

LayerModel* SceneModel::AddLayer(std::string name) {
    if (!m_layers) {
        m_layers = vl::Ref<vl::InterfaceArray>::AdoptNew(vl::InterfaceArray::CreateStrong());
        m_pLayers = m_layers.Get();
    }
    m_ownLayers.push_back(vl::Ref<LayerModel>::AdoptNew(new LayerModel(std::move(name))));
    m_layers->Add(m_ownLayers.back().Get());
    return m_ownLayers.back().Get();
}

ViewportModel* SceneModel::AddViewport(int kind, const std::string& name) {
    m_viewports.push_back(vl::Ref<ViewportModel>::AdoptNew(new ViewportModel(kind, name)));
    return m_viewports.back().Get();
}

void SceneModel::SetActiveAnimation(AnimationModel* animation) {
    m_activeAnimation = animation;
    TransformsChanged();
}

void SceneModel::SetSceneMatrix(const vl::Matrix4<double>& m) {
    m_sceneMatrix = m;
    TransformsChanged();
}

void SceneModel::SetSelector(NodeModel* node, vl::zr::Node* selected) {
    auto* selector = dynamic_cast<vl::zr::Selector*>(node->m_pObject);
    if (selector == nullptr) return;
    selector->m_pFirstChild = node->m_pFirstChild;
    selector->m_pSelectedChild = selected;
    for (vl::zr::Node* child = node->m_pFirstChild; child != nullptr; child = child->m_pNextSibling) {
        child->m_pOwner = selector;
    }
}

MaterialModel* SceneModel::MergedInto(MaterialModel* material) const {
    return m_mergedInto[material->GetId()];
}

void SceneModel::TransformsChanged() {
    ++m_restState;
    ++m_timeState;
}

void SceneModel::WatchLight(LightModel* light, bool watch) {
    std::erase(m_watchedLights, light);
    if (watch) m_watchedLights.push_back(light);
}

vl::Word SceneModel::GetParam(int position, vl::Word value, zr_VALUETYPE type) const {
    if (position != vl::zr::kParamSceneMatrix || type != ZR_VALUE_MATRIX) {
        return Scene::GetParam(position, value, type);
    }
    *vl::FromWord<vl::Matrix4<double>*>(value) = m_sceneMatrix;
    return value;
}

void SceneModel::Refresh(int, int) {
    if (m_onRefresh) m_onRefresh();
}

// Everything that can fail comes before the first change.
int SceneModel::MergeEqualMaterials() {
    std::vector<MaterialModel*> into = m_mergedInto;
    const int merged = FindEqualMaterials(into);
    if (merged == 0) return 0;
    std::vector<MaterialUses*> useLists;
    std::vector<FaceAttributes*> attributeLists;
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(m_pNodes)) {
        auto* mesh = dynamic_cast<MeshModel*>(node->m_pObject);
        if (mesh == nullptr) continue;
        if (mesh->GetUses()) useLists.push_back(mesh->GetUses().get());
        if (mesh->GetFaceAttributes()) attributeLists.push_back(mesh->GetFaceAttributes().get());
    }
    KeepDistinct(useLists);
    KeepDistinct(attributeLists);

    m_mergedInto.swap(into);
    for (MaterialUses* uses : useLists) {
        uses->Replace([this](MaterialModel* use) { return use != nullptr ? MergedInto(use) : nullptr; });
    }
    for (FaceAttributes* attributes : attributeLists) {
        for (std::uint32_t& attribute : *attributes) {
            if (attribute < m_mergedInto.size()) attribute = m_mergedInto[attribute]->GetId();
        }
    }
    KeepIf<vl::zr::Material>(m_pMaterials, [this](vl::zr::Material* material) {
        return MergedInto(static_cast<MaterialModel*>(material)) == material;
    });
    return merged;
}

// into, indexed by id, receives the material that each one is merged into. Returns the number to remove.
int SceneModel::FindEqualMaterials(std::vector<MaterialModel*>& into) const {
    std::unordered_map<std::string_view, MaterialModel*> firsts;
    const auto movable = [](const MaterialModel& m) { return m.m_pControllers == nullptr; };
    // The default material is never removed, so its equals are merged into it.
    if (auto* fallback = static_cast<MaterialModel*>(m_pDefaultMaterial)) {
        if (movable(*fallback)) firsts.emplace(fallback->GetContent(), fallback);
    }
    int merged = 0;
    for (auto* plain : vl::ArrayOf<vl::zr::Material*>(m_pMaterials)) {
        auto* material = static_cast<MaterialModel*>(plain);
        if (!movable(*material)) continue;
        MaterialModel* first = firsts.emplace(material->GetContent(), material).first->second;
        if (first == material) continue;
        into[material->GetId()] = first;
        ++merged;
    }
    return merged;
}

vl::Array* SceneModel::GetObjectsOfKind(int kind) {
    auto found = vl::Ref<vl::Array>::AdoptNew(CreateArray());
    if (kind == vl::zr::kSceneMaterials) {
        for (auto* material : vl::ArrayOf<vl::zr::Material*>(m_pMaterials)) found->Add(vl::ToWord(material));
        return found.Detach();
    }
    for (auto* node : vl::ArrayOf<vl::zr::Node*>(m_pNodes)) {
        if (vl::zr::Object3D* object = node->GetObjectOfKind(kind)) found->Add(vl::ToWord(object));
    }
    return found.Detach();
}

ChangeRecord* SceneModel::CreateChangeRecord(int) {
    m_hasChangeRecord = true;
    return new ChangeRecordModel;
}

void SceneModel::RemoveMaterial(vl::zr::Material* material) {
    m_pMaterials->RemoveAt(m_pMaterials->IndexOf(vl::ToWord(material)));
}

void SceneModel::RemoveViewport(vl::zr::Viewport* viewport, int) {
    const auto found = std::find_if(m_viewports.begin(), m_viewports.end(),
                                    [&](const auto& held) { return held.Get() == viewport; });
    if (found == m_viewports.end()) return;
    m_removedViewports.push_back(*found);
    m_viewports.erase(found);
}

void SceneModel::RemoveLayer(vl::zr::Layer* layer) {
    if (m_layers) m_layers->Remove(layer);
    for (const auto& viewport : m_viewports) {
        if (viewport->m_pLayer == layer) viewport->m_pLayer = nullptr;
    }
}

void SceneModel::CollectViewports(vl::InterfaceArray* out) {
    for (const auto& viewport : m_viewports) out->Add(viewport.Get());
}

}  // namespace kernix

vl::InterfaceArray* vl::zr::Scene::GetAllViewports() {
    auto viewports = Ref<InterfaceArray>::AdoptNew(InterfaceArray::CreateStrong());
    CollectViewports(viewports.Get());
    return viewports.Detach();
}
