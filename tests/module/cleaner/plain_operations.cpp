// SPDX-License-Identifier: MIT
#include "tests/module/cleaner/plain_operations.h"

#include <cstring>
#include <utility>
#include <vector>

#include "host/array.h"
#include "host/change_record.h"
#include "host/interface_array.h"
#include "host/material.h"
#include "host/node.h"
#include "host/object.h"
#include "host/ref.h"
#include "host/scene.h"
#include "host/viewport.h"

using vl::ArrayOf;
using vl::zr::Layer;
using vl::zr::Material;
using vl::zr::Mesh;
using vl::zr::Node;
using vl::zr::Object3D;
using vl::zr::Scene;
using vl::zr::Viewport;

namespace plain {

namespace {

int RemoveNodes(const std::vector<Node*>& nodes, ChangeRecord* record) {
    for (Node* node : nodes) {
        record->RecordNodeRemoval(node, 0);
        node->Delete(0);
    }
    return static_cast<int>(nodes.size());
}

bool IsTarget(Node* node) {
    const auto subscribers = vl::Ref<vl::InterfaceArray>::Adopt(node->GetSubscribers(nullptr));
    for (unsigned i = 0; i < subscribers->GetCount(); ++i) {
        vl::Interface* subscriber = subscribers->GetAt(i);
        auto* object = dynamic_cast<Object3D*>(subscriber);
        if (auto* owner = dynamic_cast<Node*>(subscriber)) object = owner->m_pObject;
        if (object != nullptr && (object->IsKindOf(3) || object->IsKindOf(4))) return true;
    }
    return false;
}

bool IsShown(Scene* scene, Layer* layer) {
    const auto viewports = vl::Ref<vl::InterfaceArray>::Adopt(scene->GetAllViewports());
    for (unsigned i = 0; i < viewports->GetCount(); ++i) {
        if (static_cast<Viewport*>(viewports->GetAt(i))->m_pLayer == layer) return true;
    }
    return false;
}

bool ListsEqual(std::uint32_t number, const std::uint16_t* countsA, std::uint16_t sizeA,
                const std::uint32_t* const* listsA, const std::uint16_t* countsB, std::uint16_t sizeB,
                const std::uint32_t* const* listsB) {
    for (std::uint32_t i = 0; i < number; ++i) {
        const unsigned countA = countsA != nullptr ? countsA[i] : sizeA;
        const unsigned countB = countsB != nullptr ? countsB[i] : sizeB;
        if (countA != countB) return false;
        for (unsigned k = 0; listsA != nullptr && k < countA; ++k) {
            if (listsA[i][k] != listsB[i][k]) return false;
        }
    }
    return true;
}

}  // namespace

bool GeometryEqual(const Mesh& a, const Mesh& b) {
    if (a.m_nVertices != b.m_nVertices || a.m_nFaces != b.m_nFaces) return false;
    if (a.m_nSecondary != b.m_nSecondary || a.m_nFormat != b.m_nFormat) return false;
    if ((a.m_pFaceAttributes == nullptr) != (b.m_pFaceAttributes == nullptr)) return false;
    if ((a.m_ppFaces == nullptr) != (b.m_ppFaces == nullptr)) return false;
    if ((a.m_ppSecondary == nullptr) != (b.m_ppSecondary == nullptr)) return false;
    if (std::memcmp(a.m_pPositions, b.m_pPositions, a.m_nVertices * std::size_t{12}) != 0) return false;
    for (std::uint32_t i = 0; a.m_pFaceAttributes != nullptr && i < a.m_nFaces; ++i) {
        if (a.m_pFaceAttributes[i] != b.m_pFaceAttributes[i]) return false;
    }
    if (!ListsEqual(a.m_nFaces, a.m_pFaceCounts, a.m_nFaceSize, a.m_ppFaces, b.m_pFaceCounts, b.m_nFaceSize,
                    b.m_ppFaces)) {
        return false;
    }
    return a.m_ppSecondary == nullptr ||
           ListsEqual(a.m_nSecondary, a.m_pSecondaryCounts, a.m_nSecondarySize, a.m_ppSecondary,
                      b.m_pSecondaryCounts, b.m_nSecondarySize, b.m_ppSecondary);
}

bool TransformsEqual(Node* a, Node* b) {
    vl::Matrix4<double> worldA;
    vl::Matrix4<double> worldB;
    a->GetWorldMatrix(&worldA, 1);
    b->GetWorldMatrix(&worldB, 1);
    return worldA.Equal(worldB, 9.999999974752427e-07);
}

int RemoveUnusedMaterials(Scene* scene, ChangeRecord* record) {
    std::vector<Material*> unused;
    for (Material* material : ArrayOf<Material*>(scene->m_pMaterials)) {
        if (material == scene->m_pDefaultMaterial) continue;
        int uses = 0;
        for (Node* node : ArrayOf<Node*>(scene->m_pNodes)) {
            if (node->m_pObject == nullptr || !node->m_pObject->IsKindOf(11)) continue;
            uses += static_cast<vl::zr::Renderable*>(node->m_pObject)->CountMaterialUses(material, 1);
        }
        if (uses < 1) unused.push_back(material);
    }
    for (Material* material : unused) {
        record->RecordMaterialRemoval(material, 0);
        scene->RemoveMaterial(material);
    }
    scene->Notify(1035, 1, 2);
    return static_cast<int>(unused.size());
}

int RemoveEmptyNodes(Scene* scene, ChangeRecord* record) {
    int total = 0;
    for (;;) {
        std::vector<Node*> empty;
        for (Node* node : ArrayOf<Node*>(scene->m_pNodes)) {
            if (node->m_pObject == nullptr && node->m_pFirstChild == nullptr && !IsTarget(node)) {
                empty.push_back(node);
            }
        }
        if (empty.empty()) break;
        total += RemoveNodes(empty, record);
    }
    scene->Notify(1035, 1, 2);
    return total;
}

int RemoveUnusedLayers(Scene* scene, ChangeRecord* record) {
    std::vector<Layer*> unused;
    for (unsigned i = 0; i < scene->m_pLayers->GetCount(); ++i) {
        auto* layer = static_cast<Layer*>(scene->m_pLayers->GetAt(i));
        const bool hasMembers = layer->m_pMembers != nullptr && layer->m_pMembers->m_nCount >= 1;
        if (!hasMembers || !IsShown(scene, layer)) unused.push_back(layer);
    }
    for (Layer* layer : unused) {
        record->RecordLayerRemoval(layer, 0);
        scene->RemoveLayer(layer);
    }
    scene->Notify(1035, 1, 2);
    return static_cast<int>(unused.size());
}

int RemoveNotesAndEtc(Scene* scene, ChangeRecord* record) {
    std::vector<Node*> notes;
    for (Node* node : ArrayOf<Node*>(scene->m_pNodes)) {
        if (node->m_pObject == nullptr || node->m_pObject->GetType() != 7) continue;
        bool kept = false;
        for (unsigned i = scene->m_pLayers->GetCount(); i-- > 0 && !kept;) {
            auto* layer = static_cast<Layer*>(scene->m_pLayers->GetAt(i));
            kept = ArrayOf<Node*>(layer->m_pMembers).IndexOf(node) >= 0;
        }
        if (!kept) notes.push_back(node);
    }
    const int count = RemoveNodes(notes, record);
    scene->Notify(1035, 1, 2);
    return count;
}

int RemoveMeshDupes(Scene* scene, ChangeRecord* record) {
    std::vector<Node*> different;
    std::vector<Node*> dupes;
    for (Node* node : ArrayOf<Node*>(scene->m_pNodes)) {
        Object3D* object = node->m_pObject;
        if (object == nullptr || (node->m_dwFlags & 4) != 0 || !object->IsTypeOf("zr_mesh")) continue;
        bool repeated = false;
        for (Node* earlier : different) {
            repeated = GeometryEqual(*static_cast<Mesh*>(object), *static_cast<Mesh*>(earlier->m_pObject)) &&
                       TransformsEqual(node, earlier);
            if (repeated) break;
        }
        (repeated ? dupes : different).push_back(node);
    }
    int count = 0;
    for (int pass = 0; pass < 10 && !dupes.empty(); ++pass) {
        std::vector<Node*> deferred;
        for (Node* node : dupes) {
            if (node->m_pFirstChild != nullptr) {
                deferred.push_back(node);
            } else {
                count += RemoveNodes({node}, record);
            }
        }
        dupes = std::move(deferred);
    }
    scene->Notify(1035, 1, 2);
    return count;
}

}  // namespace plain
