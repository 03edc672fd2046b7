// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <utility>
#include <vector>

#include "host/interface_array.h"
#include "host/object.h"
#include "host/ref.h"
#include "kernix/scene/material_model.h"

namespace kernix {

using Positions = std::vector<float>;  // x, y, z of each vertex

// Lists of vertex indices, all of one size: the faces of a mesh, or its lines.
class KERNIX_API IndexLists {
public:
    // size: indices in a list, 3 for triangles, 2 for lines. Trailing indices too few for a list are ignored.
    IndexLists(std::vector<std::uint32_t> indices, std::size_t size);
    IndexLists(const IndexLists&) = delete;
    IndexLists& operator=(const IndexLists&) = delete;

    std::size_t Count() const { return m_lists.size(); }
    const std::uint32_t* const* Begins() const { return m_lists.data(); }  // of each list

private:
    std::vector<std::uint32_t> m_indices;
    std::vector<const std::uint32_t*> m_lists;
};

// Null when there are too few indices for one list.
KERNIX_API std::shared_ptr<const IndexLists> MakeFaces(std::vector<std::uint32_t> indices);
KERNIX_API std::shared_ptr<const IndexLists> MakeLines(std::vector<std::uint32_t> indices);

// The geometry of a mesh, shared by all meshes that show it. Its lists may be those of other geometries, too.
struct MeshGeometry {
    std::shared_ptr<const Positions> positions;  // null: none, or outerPositions
    std::span<const float> outerPositions;       // the same in memory that outlives the geometry
    std::shared_ptr<const IndexLists> faces;     // null: none
    std::shared_ptr<const IndexLists> secondary;

    // Further ones that are drawn, but whose indices are not known.
    std::uint32_t unreadFaces = 0;
    std::uint32_t unreadSecondary = 0;

    std::span<const float> Vertices() const { return positions ? std::span(*positions) : outerPositions; }

    bool HasFaces() const { return faces || unreadFaces != 0; }
    bool HasSecondary() const { return secondary || unreadSecondary != 0; }
};

// MaterialModel::GetId of each face. Kept apart from the geometry, which meshes with other materials share.
using FaceAttributes = std::vector<std::uint32_t>;

// The materials of a mesh's parts, one for each part that is drawn or can be chosen to be drawn. Shared by
// the meshes that show the same parts.
class KERNIX_API MaterialUses {
public:
    explicit MaterialUses(std::vector<MaterialModel*> materials = {}) : m_materials(std::move(materials)) {}

    void Add(MaterialModel* material) { m_materials.push_back(material); }
    const std::vector<MaterialModel*>& All() const { return m_materials; }
    int Count(const vl::zr::Material* material) const;
    // Replaces each material by by(material).
    void Replace(const std::function<MaterialModel*(MaterialModel*)>& by);
    // Each material once. Owned by this object; valid until Replace.
    vl::InterfaceArray* Distinct();

private:
    std::vector<MaterialModel*> m_materials;
    vl::Ref<vl::InterfaceArray> m_distinct;  // null: to be made
};

class KERNIX_API MeshModel final : public vl::zr::Mesh {
public:
    // attributes, uses: null for none.
    MeshModel(std::shared_ptr<MeshGeometry> geometry, std::shared_ptr<FaceAttributes> attributes,
              std::shared_ptr<MaterialUses> uses, std::uint32_t format);

    bool IsKindOf(int kind) override { return kind == vl::zr::kKindRenderable; }
    int GetType() override { return vl::zr::kTypeObject; }
    vl::Interface* QueryComponent(int kind, int mode) override;
    int CountMaterialUses(vl::zr::Material* material, int mode) override;

    const std::shared_ptr<MeshGeometry>& GetGeometry() const { return m_geometry; }
    const std::shared_ptr<FaceAttributes>& GetFaceAttributes() const { return m_attributes; }
    const std::shared_ptr<MaterialUses>& GetUses() const { return m_uses; }

private:
    std::shared_ptr<MeshGeometry> m_geometry;
    std::shared_ptr<FaceAttributes> m_attributes;
    std::shared_ptr<MaterialUses> m_uses;
};

}  // namespace kernix
