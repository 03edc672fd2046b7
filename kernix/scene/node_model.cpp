// SPDX-License-Identifier: MIT
#include "kernix/scene/node_model.h"

#include <algorithm>
#include <utility>

#include "kernix/array.h"
#include "kernix/scene/scene_model.h"
#include "kernix/utf.h"

namespace kernix {

NodeModel::NodeModel(SceneModel& scene, std::string name) : m_scene(scene), m_name(std::move(name)) {}

NodeModel::~NodeModel() = default;

vl::VarMap* NodeModel::GetMetadata(bool create) {
    if (!m_rare && !create) return nullptr;
    vl::Ref<vl::VarMap>& metadata = More().metadata;
    if (!metadata && create) metadata = vl::Ref<vl::VarMap>::Adopt(vl::VarMap::Create());
    return metadata.Get();
}

void NodeModel::GetName(char* buffer, int size) {
    CopyText(m_name, buffer, size);
}

void NodeModel::GetNameW(char16_t* buffer, int size) {
    CopyText(ToUtf16(m_name), buffer, size);
}

// For example "wheel_left, 3 children, 24 vertices, 12 faces".
void NodeModel::GetDescription(char* buffer, int size) {
    std::string text = m_name.empty() ? "unnamed" : m_name;
    int children = 0;
    for (const vl::zr::Node* child = m_pFirstChild; child != nullptr; child = child->m_pNextSibling)
        ++children;
    if (children != 0) text += ", " + std::to_string(children) + (children == 1 ? " child" : " children");
    if (const auto* mesh = dynamic_cast<const vl::zr::Mesh*>(m_pObject)) {
        text += ", " + std::to_string(mesh->m_nVertices) + " vertices, " + std::to_string(mesh->m_nFaces) +
                " faces";
    }
    CopyText(text, buffer, size + 1);
}

vl::zr::Controller* NodeModel::GetController(int kind) {
    return kind == vl::zr::kControllerTransform ? Transform() : nullptr;
}

void NodeModel::GetLocalMatrix(vl::Matrix4<double>* m, int isStatic) {
    TransformControllerModel* const transform = Transform();
    const bool moves = isStatic == 0 && transform != nullptr && transform->Resolve(nullptr) != nullptr;
    if (moves) {
        transform->EvaluateMatrix(m_scene.GetCurrentTime(), 0, m, 0);
    } else {
        *m = GetRestMatrix();
    }
    if (transform != nullptr && (transform->m_dwFlags & vl::zr::kControllerPivotGroup) != 0) {
        // Everything on the node, its children too, hangs from the pivot.
        const vl::Vector3<float>& pivot = transform->m_offset;
        vl::Matrix4<double> hung;
        hung.SetTranslate({-double{pivot.x}, -double{pivot.y}, -double{pivot.z}});
        hung.Transform(*m);
        *m = hung;
    }
}

void NodeModel::GetWorldMatrix(vl::Matrix4<double>* m, int isStatic) {
    *m = World(isStatic);
}

// Walks up to the nearest ancestor whose transform is known, and down again: each node is computed once for
// each state of the scene, at any depth.
const vl::Matrix4<double>& NodeModel::World(int isStatic) {
    const auto which = static_cast<std::size_t>(isStatic != 0);
    const std::uint64_t state = isStatic != 0 ? m_scene.GetRestState() : m_scene.GetTimeState();
    std::vector<NodeModel*> unknown;
    for (NodeModel* node = this; node != nullptr && !node->KnowsWorld(which, state); node = node->m_parent) {
        unknown.push_back(node);
    }
    while (!unknown.empty()) {
        NodeModel* node = unknown.back();
        unknown.pop_back();
        if (!node->m_worlds[which]) node->m_worlds[which] = std::make_unique<CachedWorld>();
        CachedWorld& world = *node->m_worlds[which];
        node->GetLocalMatrix(&world.matrix, isStatic);
        world.matrix.Transform(node->m_parent != nullptr ? node->m_parent->m_worlds[which]->matrix
                                                         : m_scene.GetSceneMatrix());
        world.state = state;
    }
    return m_worlds[which]->matrix;
}

void NodeModel::Delete(int) {
    if (!m_scene.m_mayDelete || m_scene.m_mayDelete(*this)) m_scene.RemoveNode(*this);
}

vl::zr::Object3D* NodeModel::GetObjectOfKind(int kind) {
    return m_pObject != nullptr && m_pObject->IsKindOf(kind) ? m_pObject : nullptr;
}

void NodeModel::SetRestPose(const Pose& pose) {
    m_restPose = pose;
    m_restMatrix.reset();
    m_scene.TransformsChanged();
}

void NodeModel::SetRestMatrix(const vl::Matrix4<double>& m) {
    m_restMatrix = std::make_unique<vl::Matrix4<double>>(m);
    vl::AffineParts parts;
    m.AffineDecompose(parts);
    m_restPose = {parts.t, parts.q, {parts.k.x * parts.f, parts.k.y * parts.f, parts.k.z * parts.f}};
    m_scene.TransformsChanged();
}

vl::Matrix4<double> NodeModel::GetRestMatrix() const {
    if (m_restMatrix) return *m_restMatrix;
    // A scale of zero is treated as it is in an animation.
    const auto notZero = [](float s) { return s == 0 ? 1e-6 : double{s}; };
    const vl::Vector3<float>& scale = m_restPose.scale;
    vl::Matrix4<double> matrix;
    matrix.SetScale({notZero(scale.x), notZero(scale.y), notZero(scale.z)});
    matrix.Rotate(m_restPose.rotation);
    matrix.Offset(m_restPose.translation);
    return matrix;
}

void NodeModel::SetObject(vl::Ref<vl::zr::Object3D> object) {
    if (m_object) m_object->m_pNode = nullptr;
    m_object = std::move(object);
    m_pObject = m_object.Get();
    if (m_pObject != nullptr) m_pObject->m_pNode = this;
}

void NodeModel::SetObjectOffset(const vl::Matrix4<double>& offset) {
    More().objectOffset = std::make_unique<vl::Matrix4<double>>(offset);
    m_pObjectOffset = m_rare->objectOffset.get();
}

NodeModel::Rare& NodeModel::More() {
    if (!m_rare) m_rare = std::make_unique<Rare>();
    return *m_rare;
}

void NodeModel::AddControllerWord(vl::zr::Controller* controller) {
    vl::Ref<vl::Array>& words = More().controllerWords;
    if (!words) {
        words = vl::Ref<vl::Array>::AdoptNew(CreateArray());
        m_pControllers = words.Get();
    }
    words->Add(vl::ToWord(controller));
}

TransformControllerModel* NodeModel::AddTransformController() {
    vl::Ref<TransformControllerModel>& transform = More().transform;
    if (!transform) {
        transform = vl::Ref<TransformControllerModel>::AdoptNew(new TransformControllerModel(*this));
        AddControllerWord(transform.Get());
    }
    return transform.Get();
}

SampledControllerModel* NodeModel::AddController(std::string target) {
    auto& controllers = More().controllers;
    controllers.push_back(
        vl::Ref<SampledControllerModel>::AdoptNew(new SampledControllerModel(m_scene, std::move(target))));
    AddControllerWord(controllers.back().Get());
    return controllers.back().Get();
}

bool NodeModel::HasGenerator(const char* name) const {
    if (!m_rare) return false;
    const auto& generators = m_rare->generators;
    return std::find(generators.begin(), generators.end(), name) != generators.end();
}

}  // namespace kernix
