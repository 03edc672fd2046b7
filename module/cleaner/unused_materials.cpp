// SPDX-License-Identifier: MIT
#include <algorithm>
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

// The objects of a scene that use materials. After a break answers mean nothing.
class MaterialUsers {
public:
    explicit MaterialUsers(vl::Array* nodes) {
        for (Node* node : vl::ArrayOf<Node*>(nodes)) {
            if (node->m_pObject != nullptr && node->m_pObject->IsKindOf(vl::zr::kKindRenderable)) {
                m_objects.push_back(static_cast<Renderable*>(node->m_pObject));
            }
        }
    }

    // Takes the materials out that an object uses. Scenes tend to list materials in the order in which their
    // nodes use them, so each is first looked for where the last one was found. The others are looked for in
    // a few objects at a time, which stay at hand while all materials are asked for.
    void DropUsed(std::vector<Material*>& materials, const vl::Context* context) {
        std::size_t next = 0;
        std::erase_if(materials, [&](Material* material) {
            const std::size_t found = Find(material, next, next + kNearby, context);
            if (found == kNone) return false;
            next = found;
            return true;
        });
        for (std::size_t first = 0; first < m_objects.size(); first += kBlock) {
            std::erase_if(materials, [&](Material* material) {
                return Find(material, first, first + kBlock, context) != kNone;
            });
        }
    }

private:
    static constexpr std::size_t kNearby = 64;
    static constexpr std::size_t kBlock = 256;
    static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

    // The first object from first up to last, which may lie past the end, that uses the material.
    std::size_t Find(Material* material, std::size_t first, std::size_t last,
                     const vl::Context* context) const {
        for (std::size_t i = first; i < std::min(last, m_objects.size()); ++i) {
            if (zrt::IsBreak(context)) break;
            if (m_objects[i]->CountMaterialUses(material, 1) > 0) return i;
        }
        return kNone;
    }

    std::vector<Renderable*> m_objects;
};

}  // namespace

int CCleanerImpl::RemoveUnusedMaterials(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr || scene->m_pMaterials == nullptr) return 0;
    const vl::Ref<vl::Array> list = zrt::NewList();
    vl::ArrayOf<Material*> candidates(list.Get());
    std::vector<Material*> unused;
    for (Material* material : vl::ArrayOf<Material*>(scene->m_pMaterials)) {
        if (material != scene->m_pDefaultMaterial) unused.push_back(material);
    }
    MaterialUsers(scene->m_pNodes).DropUsed(unused, context);
    for (Material* material : unused) candidates.Add(material);

    const int count = zrt::RemoveEach(candidates, context, [&](Material* material) {
        if (record != nullptr) record->RecordMaterialRemoval(material, 0);
        scene->RemoveMaterial(material);
    });
    zrt::NotifyRemoved(scene);
    return count;
}
