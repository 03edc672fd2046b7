// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <random>
#include <string>
#include <vector>

#include "kernix/scene/plain_objects.h"
#include "kernix/scene/scene_model.h"
#include "tests/module/keyframe/record_tree.h"

// Scenes for the passes, and checks of their records.
namespace scene_kit {

using kernix::NodeModel;
using kernix::SceneModel;
using vl::Ref;
using Matrix = vl::Matrix4<double>;
using Vector = vl::Vector3<float>;

inline Ref<vl::zr::Object3D> Own(vl::zr::Object3D* object) {
    return Ref<vl::zr::Object3D>::Adopt(object);
}

// A mesh with the given content; empty without vertices.
inline Ref<vl::zr::Object3D> Mesh(int faces, int lines = 0, bool hasVertices = true) {
    auto geometry = std::make_shared<kernix::MeshGeometry>();
    if (hasVertices) geometry->positions = std::make_shared<kernix::Positions>(9, 0.0f);
    std::vector<std::uint32_t> faceIndices, lineIndices;
    for (int i = 0; i < 3 * faces; ++i) faceIndices.push_back(static_cast<std::uint32_t>(i % 3));
    for (int i = 0; i < 2 * lines; ++i) lineIndices.push_back(static_cast<std::uint32_t>(i % 2));
    geometry->faces = kernix::MakeFaces(std::move(faceIndices));
    geometry->secondary = kernix::MakeLines(std::move(lineIndices));
    return Own(new kernix::MeshModel(std::move(geometry), nullptr, nullptr, 0));
}

inline NodeModel* AddCamera(SceneModel& scene, NodeModel* parent, NodeModel* target = nullptr) {
    NodeModel* node = scene.AddNode(parent, "camera");
    auto* camera = new kernix::CameraModel();
    node->SetObject(Own(camera));
    camera->SetTarget(target);
    return node;
}

inline NodeModel* AddLight(SceneModel& scene, NodeModel* parent, NodeModel* target = nullptr) {
    NodeModel* node = scene.AddNode(parent, "light");
    auto* light = new kernix::LightModel(vl::zr::kLightSpot);
    node->SetObject(Own(light));
    light->SetTarget(target);
    return node;
}

inline NodeModel* AddMesh(SceneModel& scene, NodeModel* parent, std::string name = "mesh") {
    NodeModel* node = scene.AddNode(parent, std::move(name));
    node->SetObject(Mesh(1));
    return node;
}

inline kernix::TransformTrack* Track(SceneModel& scene, NodeModel* node) {
    if (scene.GetActiveAnimation() == nullptr) scene.AddAnimation(u"animation");
    return node->AddTransformController()->AddTransformTrack(scene.GetActiveAnimation());
}

inline vl::Quaternion RandomRotation(std::mt19937& random) {
    std::normal_distribution<float> normal;
    const float v[4] = {normal(random), normal(random), normal(random), normal(random)};
    const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2] + v[3] * v[3]);
    return {v[0] / length, v[1] / length, v[2] / length, v[3] / length};
}

inline Vector RandomVector(std::mt19937& random, float low, float high) {
    std::uniform_real_distribution<float> in(low, high);
    return {in(random), in(random), in(random)};
}

// A scale between two rotations, which usually shears.
inline Matrix RandomMatrix(std::mt19937& random) {
    Matrix m = record_tree::Identity();
    if (random() % 2 == 0) m.Rotate(RandomRotation(random));
    m.Scale(RandomVector(random, 0.5f, 2));
    if (random() % 4 == 0) m.Scale(Vector{-1, 1, 1});
    m.Rotate(RandomRotation(random));
    m.Offset(RandomVector(random, -5, 5));
    return m;
}

inline std::vector<ExportNode*> AllRecords(ZR_TK& tool) {
    const vl::ArrayOf<ExportNode*> all(tool.m_pAllNodes);
    return {all.begin(), all.end()};
}

// The flags of the record made for the node; 0 if it has none.
inline std::uint32_t FlagsOf(ZR_TK& tool, const NodeModel* node) {
    for (const ExportNode* record : AllRecords(tool)) {
        if (record->pSourceNode == node) return record->dwFlags;
    }
    return 0;
}

// Every record except the roots is listed once, by its parent, and the flat list has them in tree order.
inline void ExpectSoundTree(ZR_TK& tool) {
    std::vector<ExportNode*> walked;
    zrt::WalkRecords(tool.m_pRoots, [&](ExportNode* record) {
        for (const ExportNode* child : vl::ArrayOf<ExportNode*>(record->pChildren)) {
            EXPECT_EQ(child->pParent, record);
        }
        walked.push_back(record);
        return record;
    });
    EXPECT_EQ(walked, AllRecords(tool));
    for (const ExportNode* root : vl::ArrayOf<ExportNode*>(tool.m_pRoots)) EXPECT_EQ(root->pParent, nullptr);
}

}  // namespace scene_kit
