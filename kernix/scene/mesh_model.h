// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "host/object.h"
#include "kernix/scene/material_model.h"

namespace kernix {

// The geometry of a mesh, shared by all meshes that show it. Either count list may be empty: faces are then
// triangles and secondary lists pairs.
struct MeshGeometry {
    std::vector<float> positions;            // x, y, z a vertex
    std::vector<std::uint32_t> faceIndices;  // of all faces, one after another
    std::vector<std::uint16_t> faceCounts;
    std::vector<std::uint32_t> secondaryIndices;
    std::vector<std::uint16_t> secondaryCounts;

    // Where each list begins; made by Index once the lists above are filled.
    std::vector<const std::uint32_t*> faces;
    std::vector<const std::uint32_t*> secondary;

    // Also gives back the room that filling left over.
    KERNIX_API void Index();
};

// MaterialModel::GetId of each face. Apart from the geometry, which meshes of other materials share.
using FaceAttributes = std::vector<std::uint32_t>;

class KERNIX_API MeshModel final : public vl::zr::Mesh {
public:
    // geometry is indexed. attributes: null for none. uses: the material of each part that is drawn or can be
    // chosen to be drawn.
    MeshModel(std::shared_ptr<MeshGeometry> geometry, std::shared_ptr<FaceAttributes> attributes,
              std::vector<MaterialModel*> uses, std::uint32_t format);

    bool IsKindOf(int kind) override { return kind == vl::zr::kKindRenderable; }
    int GetType() override { return vl::zr::kTypeObject; }
    vl::Interface* QueryComponent(int kind, int mode) override;
    int CountMaterialUses(vl::zr::Material* material, int mode) override;

    const std::shared_ptr<MeshGeometry>& GetGeometry() const { return m_geometry; }
    const std::shared_ptr<FaceAttributes>& GetFaceAttributes() const { return m_attributes; }
    std::vector<MaterialModel*> m_uses;

private:
    std::shared_ptr<MeshGeometry> m_geometry;
    std::shared_ptr<FaceAttributes> m_attributes;
};

}  // namespace kernix
