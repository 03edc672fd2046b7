// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/content_ids.h"
#include "app/scene/loaded_scene.h"
#include "app/scene/node_parts.h"
#include "gltf/document.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// Whether a material lets what lies behind it show through.
bool IsBlended(const gltf::Json& material);

// Builds the renderables of nodes. Meshes with equal vertices and lists share both, whatever their materials;
// equal vertices are shared even if the lists differ.
class MeshBuilder {
public:
    // The attribute of faces without a material.
    static constexpr std::uint32_t kNoMaterial = 0xFFFFFFFF;

    MeshBuilder(const gltf::Document& document, const std::vector<kernix::MaterialModel*>& materials,
                ContentIds& ids);

    // A new renderable, owned by the caller. `motion` describes how the node moves; it becomes part of the
    // format value, with everything else that decides what is drawn.
    vl::zr::Object3D* Build(const NodeParts& node, const std::string& motion);

    // Whether the node's mesh has what `meshes` asks for.
    bool Shows(const NodeParts& node, Meshes meshes);

    // Whether a part of the node's mesh is blended with what lies behind it, in any variant.
    bool ShowsBlended(const NodeParts& node) { return ShapeOf(*node.mesh->Index()).isBlended; }

private:
    using Words = std::vector<std::uint32_t>;

    static constexpr std::uint32_t kNone = 0xFFFFFFFF;
    static constexpr std::uint32_t kTriangles = 4;

    // The numbers of what a mesh shares with others.
    struct Shape {
        std::uint32_t lists = kNone;  // kNone: not made yet
        std::uint32_t attributes = kNone;
        std::uint32_t uses = kNone;
        std::uint32_t format = 0;  // everything drawn but positions, lists and materials
        bool isBlended = false;
    };

    // A primitive.
    struct Part {
        const gltf::Json* attributes = nullptr;
        const gltf::Json* indices = nullptr;
        const gltf::Json* material = nullptr;
        const gltf::Json* targets = nullptr;
        const gltf::Json* extensions = nullptr;
        std::uint32_t mode = kTriangles;
        std::uint32_t positions = kNone;    // accessor
        std::uint32_t positionsId = kNone;  // number of its content
        std::uint32_t indicesId = kNone;
        std::uint32_t attribute = kNoMaterial;  // of its faces
        std::uint32_t isCompressed = 0;
    };

    struct Vertices {
        std::shared_ptr<const kernix::Positions> positions;
        std::span<const float> outerPositions;  // see kernix::MeshGeometry
        Words ends;                             // where those of each source begin, then the total
    };

    // The indices of the parts of a mesh, in the order of its lists.
    struct Order {
        Words faces;
        Words lines;
        std::uint32_t unreadFaces = 0;
        std::uint32_t unreadLines = 0;
    };

    struct SharedLists {
        std::shared_ptr<const kernix::IndexLists> faces, lines;
    };

    const Shape& ShapeOf(std::size_t mesh);
    Part PartOf(const gltf::Json& primitive);
    static void DropRepeated(std::vector<Part>& parts, Words& format);
    std::uint32_t ListsOf(const std::vector<Part>& parts);
    std::span<const float> StoredPositions(const Part& part) const;
    Vertices VerticesOf(const std::vector<Part>& parts, Words& sources);
    std::vector<float> PositionsOf(const Part& part) const;
    static void AddInOrder(std::uint32_t mode, const Words& indices, std::uint32_t first, Order& order);
    static void AddUnread(std::uint32_t mode, std::size_t count, Order& order);
    bool IsReadable(const Part& part) const;
    void AddLists(const Part& part, std::uint32_t first, std::size_t count, Order& order) const;
    Words SetLists(const std::vector<Part>& parts, const Vertices& vertices, const Words& sources,
                   kernix::MeshGeometry& geometry) const;
    void SetSharedLists(const Part& part, kernix::MeshGeometry& geometry);
    std::uint32_t AttributesOf(const std::vector<Part>& parts, std::uint32_t lists);
    void SetUses(const std::vector<Part>& parts, Shape& shape);
    void AddFormat(const Part& part, Words& format);
    std::uint32_t SkinFormat(std::size_t skin);

    const gltf::Document& m_document;
    const std::vector<kernix::MaterialModel*>& m_materials;  // by index in the document
    ContentIds& m_ids;
    std::vector<Shape> m_shapes;  // by mesh
    Words m_skins;                // by skin: the number of its content, or kNone
    Interner m_formats;
    Interner m_skinFormats;
    Interner m_nodeFormats;
    // What meshes share, indexed by the number of its key.
    Interner m_listsKeys;
    std::vector<std::shared_ptr<kernix::MeshGeometry>> m_lists;
    std::unordered_map<std::uint32_t, Words> m_faces;  // by part, for lists of several parts
    Interner m_sharedListsKeys;
    std::vector<SharedLists> m_sharedLists;
    Interner m_verticesKeys;
    std::vector<Vertices> m_vertices;
    Interner m_usesKeys;
    std::vector<std::shared_ptr<kernix::MaterialUses>> m_uses;
    Interner m_attributesKeys;
    std::vector<std::shared_ptr<kernix::FaceAttributes>> m_attributes;
};

}  // namespace zr
