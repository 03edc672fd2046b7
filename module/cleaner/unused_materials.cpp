// SPDX-License-Identifier: MIT
#include <cstddef>
#include <vector>

#include "host/change_record.h"
#include "host/material.h"
#include "host/node.h"
#include "host/object.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/removal.h"

using vl::zr::Material;
using vl::zr::Node;
using vl::zr::Renderable;

namespace {

// The objects of a scene that use materials.
class MaterialUses {
public:
    explicit MaterialUses(vl::Array* nodes) {
        for (Node* node : vl::ArrayOf<Node*>(nodes)) {
            if (node->m_pObject != nullptr && node->m_pObject->IsKindOf(vl::zr::kKindRenderable)) {
                m_objects.push_back(static_cast<Renderable*>(node->m_pObject));
            }
        }
    }

    // Whether an object uses the material. False after a break, which the caller tests for.
    bool IsUsed(Material* material, const vl::Context* context) {
        for (std::size_t tried = 0; tried < m_objects.size(); ++tried) {
            if (zrt::IsBreak(context)) return false;
            if (m_objects[m_next]->CountMaterialUses(material, 1) > 0) return true;
            m_next = (m_next + 1) % m_objects.size();
        }
        return false;
    }

private:
    std::vector<Renderable*> m_objects;

    // Where the next search begins: at the last find, since scenes tend to list their materials in the
    // order in which their nodes use them.
    std::size_t m_next = 0;
};

}  // namespace

int CCleanerImpl::RemoveUnusedMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr || scene->m_pMaterials == nullptr) return 0;
    const vl::Ref<vl::Array> list = zrt::NewList();
    vl::ArrayOf<Material*> candidates(list.Get());
    MaterialUses uses(scene->m_pNodes);
    for (Material* material : vl::ArrayOf<Material*>(scene->m_pMaterials)) {
        if (material == scene->m_pDefaultMaterial) continue;
        const bool used = uses.IsUsed(material, context);
        if (zrt::IsBreak(context)) break;
        if (!used) candidates.Add(material);
    }

    const int count = zrt::RemoveEach(candidates, context, [&](Material* material) {
        if (record != nullptr) record->RecordMaterialRemoval(material, 0);
        scene->RemoveMaterial(material);
    });
    zrt::NotifyRemoved(scene);
    return count;
}
