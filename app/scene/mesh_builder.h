// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/content_ids.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Whether what lies behind a material shows through it.
bool IsBlended(const gltf::Json& material);

// Makes the renderables of nodes. Meshes whose vertices and lists are equal share them, whatever their
// materials.
class MeshBuilder {
public:
    // attribute of the faces of a primitive without a material
    static constexpr std::uint32_t kNoMaterial = 0xFFFFFFFF;

    MeshBuilder(LoadedScene& loaded, ContentIds& ids) : m_loaded(loaded), m_ids(ids) {}

    // `motion`: what tells how the node moves; with the rest of what decides the drawing it makes the format.
    vl::zr::Object3D* Build(const gltf::Json& node, const std::string& motion);

    // Whether a part of the node's mesh is blended with what lies behind it, in any variant.
    bool ShowsBlended(const gltf::Json& node) { return ShapeOf(gltf::IndexMember(node, "mesh")).isBlended; }

private:
    struct Shape {
        std::shared_ptr<kernix::MeshGeometry> geometry;
        std::shared_ptr<kernix::FaceAttributes> attributes;
        std::vector<kernix::MaterialModel*> uses;
        bool isBlended = false;
        std::string format;  // all that is drawn and is no position, list or material
    };

    struct Lists {
        std::shared_ptr<kernix::MeshGeometry> geometry;
        std::vector<std::size_t> faces;  // how many each primitive has
    };

    const Shape& ShapeOf(std::size_t mesh);
    const Lists& ListsOf(std::span<const gltf::Json> primitives, const std::string& key);
    void AddUses(const gltf::Json& primitive, Shape& shape) const;
    void AddGeometry(const gltf::Json& primitive, kernix::MeshGeometry& geometry) const;
    kernix::MaterialModel* MaterialOf(const gltf::Json& primitive) const;
    std::string ListsKey(const gltf::Json& primitive);
    std::string FormatOf(const gltf::Json& primitive);
    std::string SkinFormat(std::size_t skin);
    std::vector<float> Positions(const gltf::Json& primitive) const;

    LoadedScene& m_loaded;
    ContentIds& m_ids;
    std::unordered_map<std::size_t, Shape> m_shapes;  // by mesh
    std::unordered_map<std::string, Lists> m_lists;
    std::unordered_map<std::string, std::shared_ptr<kernix::FaceAttributes>> m_attributes;
};

}  // namespace zr
