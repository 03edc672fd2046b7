// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/content_ids.h"
#include "app/scene/loaded_scene.h"

namespace zr {

// Makes the renderables of nodes. Meshes whose vertices, lists and materials are equal share their geometry.
class MeshBuilder {
public:
    // attribute of the faces of a primitive without a material
    static constexpr std::uint32_t kNoMaterial = 0xFFFFFFFF;

    MeshBuilder(LoadedScene& loaded, ContentIds& ids) : m_loaded(loaded), m_ids(ids) {}

    // `motion`: what tells how the node moves; with the rest of what decides the drawing it makes the format.
    vl::zr::Object3D* Build(const gltf::Json& node, const std::string& motion);

private:
    struct Shape {
        std::shared_ptr<kernix::MeshGeometry> geometry;
        std::vector<kernix::MaterialModel*> uses;
        std::uint32_t format = 0;  // number of all that is drawn and is no position, list or material
    };

    const Shape& ShapeOf(std::size_t mesh);
    // What a mesh is made of, as texts.
    struct Description {
        std::string lists;
        std::string format;
    };

    void Describe(const gltf::Json& primitive, Shape& shape, Description& description);
    void AddPrimitive(const gltf::Json& primitive, kernix::MeshGeometry& geometry);
    std::string FormatOf(const gltf::Json& primitive);
    std::string SkinFormat(std::size_t skin);
    std::vector<float> Positions(const gltf::Json& primitive) const;

    LoadedScene& m_loaded;
    ContentIds& m_ids;
    std::unordered_map<std::size_t, Shape> m_shapes;  // by mesh
    std::unordered_map<std::string, std::shared_ptr<kernix::MeshGeometry>> m_geometries;
};

}  // namespace zr
