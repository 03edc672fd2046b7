// SPDX-License-Identifier: MIT
#include "kernix/scene/mesh_model.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace kernix {
namespace {

void IndexLists(const std::vector<std::uint32_t>& indices, const std::vector<std::uint16_t>& counts,
                std::size_t uniform, std::vector<const std::uint32_t*>& lists) {
    const std::size_t count = counts.empty() ? indices.size() / uniform : counts.size();
    lists.clear();
    lists.reserve(count);
    std::size_t start = 0;
    for (std::size_t i = 0; i < count; ++i) {
        lists.push_back(indices.data() + start);
        start += counts.empty() ? uniform : counts[i];
    }
}

}  // namespace

void MeshGeometry::Index() {
    faceIndices.shrink_to_fit();
    secondaryIndices.shrink_to_fit();
    IndexLists(faceIndices, faceCounts, 3, faces);
    IndexLists(secondaryIndices, secondaryCounts, 2, secondary);
}

int MaterialUses::Count(const vl::zr::Material* material) const {
    return static_cast<int>(std::count(m_materials.begin(), m_materials.end(), material));
}

void MaterialUses::Replace(const std::function<MaterialModel*(MaterialModel*)>& by) {
    for (MaterialModel*& material : m_materials) material = by(material);
    m_distinct = nullptr;
}

vl::InterfaceArray* MaterialUses::Distinct() {
    if (m_distinct) return m_distinct.Get();
    auto distinct = vl::Ref<vl::InterfaceArray>::AdoptNew(vl::InterfaceArray::CreateStrong());
    std::unordered_set<const MaterialModel*> seen;
    for (MaterialModel* material : m_materials)
        if (seen.insert(material).second) distinct->Add(material);
    m_distinct = std::move(distinct);
    return m_distinct.Get();
}

MeshModel::MeshModel(std::shared_ptr<MeshGeometry> geometry, std::shared_ptr<FaceAttributes> attributes,
                     std::shared_ptr<MaterialUses> uses, std::uint32_t format)
    : m_geometry(std::move(geometry)), m_attributes(std::move(attributes)), m_uses(std::move(uses)) {
    const MeshGeometry& g = *m_geometry;
    const auto dataOrNull = [](const auto& list) { return list.empty() ? nullptr : list.data(); };
    m_nFormat = format;
    m_pPositions = dataOrNull(g.Vertices());
    m_nVertices = static_cast<std::uint32_t>(g.Vertices().size() / 3);
    m_nFaces = static_cast<std::uint32_t>(g.faces.size());
    m_pFaceCounts = dataOrNull(g.faceCounts);
    if (m_attributes) m_pFaceAttributes = dataOrNull(*m_attributes);
    m_ppFaces = dataOrNull(g.faces);
    m_nSecondary = static_cast<std::uint32_t>(g.secondary.size());
    m_pSecondaryCounts = dataOrNull(g.secondaryCounts);
    m_ppSecondary = dataOrNull(g.secondary);
}

vl::Interface* MeshModel::QueryComponent(int kind, int) {
    if (kind == vl::zr::kComponentMaterials && m_uses) {
        m_uses->Distinct()->AddRef();
        return m_uses->Distinct();
    }
    if (kind != vl::zr::kComponentMesh) return nullptr;
    auto component = vl::Ref<vl::zr::MeshComponent>::AdoptNew(new vl::zr::MeshComponent);
    component->m_nVertices = m_nVertices;
    component->m_nFaces = m_nFaces + m_geometry->unreadFaces;
    component->m_nSecondary = m_nSecondary + m_geometry->unreadSecondary;
    return component.Detach();
}

int MeshModel::CountMaterialUses(vl::zr::Material* material, int) {
    return m_uses ? m_uses->Count(material) : 0;
}

}  // namespace kernix
