// SPDX-License-Identifier: MIT
#include "module/keyframe/node_filter.h"

#include <vector>

#include "host/export_node.h"
#include "host/generator.h"
#include "host/node.h"
#include "host/object.h"
#include "host/ref.h"
#include "host/scene.h"
#include "host/serializer.h"
#include "module/keyframe/mesh_content.h"

namespace zrt {

using vl::zr::Node;

NodeFilter::NodeFilter(vl::zr::Scene* scene, std::uint32_t exportFlags)
    : m_scene(scene), m_options(exportFlags) {
    m_known.reserve(static_cast<std::size_t>(vl::ArrayOf<Node*>(scene->m_pNodes).Count()));
}

std::uint32_t NodeFilter::Flags(Node* node) {
    if (const auto known = m_known.find(node); known != m_known.end()) return known->second;

    // A node with its own flags, whose children are examined until one is accepted.
    struct Pending {
        Node* node;
        std::uint32_t flags;
        Node* nextChild;
    };
    std::vector<Pending> pending;
    std::uint32_t answer = 0;

    const auto begin = [&](Node* n) {
        const OwnFlags own = Judge(n);
        if (own.rejected) {
            answer = m_known[n] = 0;
            return;
        }
        pending.push_back({n, own.flags, n->m_pFirstChild});
    };

    begin(node);
    while (!pending.empty()) {
        Pending& top = pending.back();
        if (top.nextChild != nullptr) {
            Node* child = top.nextChild;
            const auto known = m_known.find(child);
            if (known == m_known.end()) {
                begin(child);
                continue;
            }
            top.nextChild = known->second != 0 ? nullptr : child->m_pNextSibling;
            if (known->second != 0) top.flags |= NF_GROUP;
            continue;
        }
        if (top.flags == 0) top.flags = FallbackFlags(top.node);
        answer = m_known[top.node] = top.flags;
        pending.pop_back();
    }
    return answer;
}

NodeFilter::OwnFlags NodeFilter::Judge(Node* node) const {
    constexpr OwnFlags kRejected{true, 0};
    if (vl::zr::Generator::IsPresent(node, "zr_detail_markup")) return kRejected;

    const bool isSystem = (node->m_dwFlags & vl::zr::kNodeSystem) != 0;
    if (isSystem) {
        const vl::zr::Camera* current = m_scene->m_pCurrentCamera;
        if (!Has(vl::tk::kExportCameras) || !Has(vl::tk::kExportSystemCamera) ||
            node->GetObjectOfKind(vl::zr::kKindCamera) == nullptr ||
            (current != nullptr && current->m_pNode != node)) {
            return kRejected;
        }
    }
    if (!Has(vl::tk::kAllChoices) && node->m_pOwner != nullptr &&
        node->m_pOwner->IsKindOf(vl::zr::kKindSelector)) {
        const auto* selector = static_cast<vl::zr::Selector*>(node->m_pOwner);
        const Node* shown =
            selector->m_pSelectedChild != nullptr ? selector->m_pSelectedChild : selector->m_pFirstChild;
        if (node != shown) return kRejected;
    }

    OwnFlags own = JudgeObject(node, isSystem);
    if (!own.rejected && (node->m_dwFlags & vl::zr::kNodeSkeleton) != 0) {
        if (Has(vl::tk::kSkeletonOnly)) own.flags &= ~std::uint32_t{NF_GEOMETRY};
        if (Has(vl::tk::kExportBones)) own.flags |= NF_GROUP;
    }
    return own;
}

NodeFilter::OwnFlags NodeFilter::JudgeObject(Node* node, bool isSystem) const {
    const auto geometryIf = [](bool exported) { return exported ? std::uint32_t{NF_GEOMETRY} : 0; };
    vl::zr::Object3D* object = node->m_pObject;
    if (object == nullptr) return {false, 0};
    if (object->IsKindOf(vl::zr::kKindRenderable)) return {false, RenderableFlags(node)};
    if (object->IsKindOf(vl::zr::kKindLight)) return {isSystem, geometryIf(Has(vl::tk::kExportLights))};
    if (object->IsKindOf(vl::zr::kKindCamera)) {
        return {false, geometryIf(Has(isSystem ? vl::tk::kExportSystemCamera : vl::tk::kExportCameras))};
    }
    if (object->IsKindOf(vl::zr::kKindNote)) return {isSystem, geometryIf(Has(vl::tk::kExportNotes))};
    if (object->IsKindOf(vl::zr::kKindBone)) {
        return {isSystem, Has(vl::tk::kExportBones) ? std::uint32_t{NF_GROUP} : 0};
    }
    return {false, 0};
}

std::uint32_t NodeFilter::RenderableFlags(Node* node) const {
    const auto mesh = QueryMeshContent(node->m_pObject);
    if (!mesh) return 0;
    const bool exported = mesh->m_nFaces != 0 || (mesh->m_nSecondary != 0 && !Has(vl::tk::kNoSecondary)) ||
                          Has(vl::tk::kAllRenderables);
    return exported ? std::uint32_t{NF_GEOMETRY} : 0;
}

std::uint32_t NodeFilter::FallbackFlags(Node* node) {
    const bool wantsCameras = Has(vl::tk::kCameraTargetRecords | vl::tk::kCameraTargetKeys);
    const bool wantsLights = Has(vl::tk::kLightTargetRecords);
    std::uint32_t flags = 0;
    if (wantsCameras || wantsLights) {
        if (!m_hasTargets) CollectTargets();
        if (wantsCameras && m_cameraTargets.count(node) != 0) flags |= NF_CAMERA_TARGET | NF_GROUP;
        if (wantsLights && m_lightTargets.count(node) != 0) flags |= NF_LIGHT_TARGET | NF_GROUP;
    }
    if (flags == 0 && Has(vl::tk::kKeepAllNodes)) flags = NF_GROUP;
    return flags;
}

void NodeFilter::CollectTargets() {
    m_hasTargets = true;
    for (Node* node : vl::ArrayOf<Node*>(m_scene->m_pNodes)) {
        if (auto* camera = node->GetObjectOfKind(vl::zr::kKindCamera)) {
            m_cameraTargets.insert(static_cast<vl::zr::Camera*>(camera)->GetTargetNode());
        }
        if (auto* light = node->GetObjectOfKind(vl::zr::kKindLight)) {
            m_lightTargets.insert(static_cast<vl::zr::Light*>(light)->GetTargetNode());
        }
    }
}

}  // namespace zrt
