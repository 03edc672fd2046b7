// SPDX-License-Identifier: MIT
#include "kernix/scene/mesh_model.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace kernix {
namespace {

std::shared_ptr<const IndexLists> Make(std::vector<std::uint32_t> indices, std::size_t size) {
    if (indices.size() < size) return nullptr;
    return std::make_shared<const IndexLists>(std::move(indices), size);
}

}  // namespace

IndexLists::IndexLists(std::vector<std::uint32_t> indices, std::size_t size) : m_indices(std::move(indices)) {
    m_indices.shrink_to_fit();
    m_lists.reserve(m_indices.size() / size);
    for (std::size_t i = 0; i + size <= m_indices.size(); i += size) m_lists.push_back(m_indices.data() + i);
}

std::shared_ptr<const IndexLists> MakeFaces(std::vector<std::uint32_t> indices) {
    return Make(std::move(indices), 3);
}

std::shared_ptr<const IndexLists> MakeLines(std::vector<std::uint32_t> indices) {
    return Make(std::move(indices), 2);
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
    if (m_attributes) m_pFaceAttributes = dataOrNull(*m_attributes);
    if (g.faces) {
        m_nFaces = static_cast<std::uint32_t>(g.faces->Count());
        m_ppFaces = g.faces->Begins();
    }
    if (g.secondary) {
        m_nSecondary = static_cast<std::uint32_t>(g.secondary->Count());
        m_ppSecondary = g.secondary->Begins();
    }
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
