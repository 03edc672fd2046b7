// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <unordered_set>
#include <utility>
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

// Removes from `materials` those that objects of the scene list themselves. Returns the objects without such
// a list.
std::vector<Renderable*> DropListed(std::vector<Material*>& materials, vl::Array* nodes,
                                    const vl::Context* context) {
    std::vector<Renderable*> unlisted;
    std::unordered_set<const vl::Interface*> used;
    std::unordered_set<const vl::InterfaceArray*> known;  // lists that several objects share
    for (Node* node : vl::ArrayOf<Node*>(nodes)) {
        if (zrt::IsBreak(context)) break;
        if (node->m_pObject == nullptr || !node->m_pObject->IsKindOf(vl::zr::kKindRenderable)) continue;
        const auto component =
            vl::Ref<vl::Interface>::Adopt(node->m_pObject->QueryComponent(vl::zr::kComponentMaterials, 0));
        auto* list = dynamic_cast<vl::InterfaceArray*>(component.Get());
        if (list == nullptr) {
            unlisted.push_back(static_cast<Renderable*>(node->m_pObject));
        } else if (known.insert(list).second) {
            for (unsigned i = 0; i < list->GetCount(); ++i) used.insert(list->GetAt(i));
        }
    }
    std::erase_if(materials, [&](Material* material) { return used.count(material) != 0; });
    return unlisted;
}

// Asks the objects of a scene one by one for the materials that they use. After a break the answers are
// meaningless.
class MaterialUsers {
public:
    explicit MaterialUsers(std::vector<Renderable*> objects) : m_objects(std::move(objects)) {}

    // Removes the materials that an object uses. Scenes tend to list materials in the order in which their
    // nodes use them, so each is first looked for where the last one was found. The others are looked for in
    // one block of objects at a time, which stays in the cache for all materials.
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

    // The first object in [first, last) that uses the material, or kNone. last may be past the end.
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
    return zrt::CountedWithNotify(scene, [&](int& count) {
        std::vector<Material*> unused;
        for (Material* material : vl::ArrayOf<Material*>(scene->m_pMaterials)) {
            if (material != scene->m_pDefaultMaterial) unused.push_back(material);
        }
        MaterialUsers(DropListed(unused, scene->m_pNodes, context)).DropUsed(unused, context);
        for (Material* material : unused) {
            if (zrt::IsBreak(context)) break;
            if (record != nullptr) record->RecordMaterialRemoval(material, 0);
            scene->RemoveMaterial(material);
            ++count;
        }
    });
}
