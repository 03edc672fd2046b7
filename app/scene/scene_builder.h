// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "app/scene/animation_builder.h"
#include "app/scene/content_ids.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/mesh_builder.h"
#include "app/scene/node_parts.h"
#include "app/scene/surroundings.h"

namespace zr {

// Builds the scene of a document.
class SceneBuilder {
public:
    SceneBuilder(gltf::Document& document, DocumentCurves& curves, const SceneOptions& options);

    SceneParts Build() &&;

private:
    // What the document outside the scene says about an element.
    struct Mark {
        bool isJoint = false;
        std::unique_ptr<const std::string> reason;  // why it must stay; null where it need not
    };

    void MarkReferences();
    void MarkKept(gltf::Kind kind, std::vector<Mark>& marks);
    void AddMaterials();
    void AddNodes();
    void AddNode(std::size_t index, std::size_t parent);
    vl::zr::Object3D* MakeObject(std::size_t index, std::size_t parent, const NodeParts& parts);
    vl::zr::Object3D* MakeLight(const gltf::Json& extensions);
    static void SetTransform(kernix::NodeModel& model, const NodeParts& parts);
    void SetMetadata(std::size_t index, const gltf::Json& extras);
    void ApplyExtension(std::size_t index);
    void AddAnimations();
    void AddLayersAndViewports();
    void AddDefaultViewport();
    bool UsedInScene(std::size_t material) const { return m_drawn[material]; }

    static constexpr std::size_t kNone = AnimationBuilder::kNone;

    gltf::Document& m_document;
    const SceneOptions& m_options;
    SceneParts m_parts;
    kernix::SceneModel& m_scene;
    ContentIds m_ids;
    MeshBuilder m_meshes;
    AnimationBuilder m_animations;
    Surroundings m_surroundings;
    std::vector<std::size_t> m_extended;  // nodes with a ZR_scene extension
    std::vector<bool> m_drawn;            // materials that the scene's meshes use
    std::vector<Mark> m_nodeMarks;
    std::vector<Mark> m_materialMarks;
    std::vector<Mark> m_animationMarks;
};

}  // namespace zr
