// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/change_record.h"
#include "host/node.h"
#include "host/object.h"
#include "module/cleaner/cleaner.h"
#include "module/cleaner/mesh_index.h"
#include "module/cleaner/removal.h"

using vl::zr::Mesh;
using vl::zr::Node;

namespace {

// A duplicate that still has a child waits for the next pass.
constexpr int kMaxDeletionPasses = 10;

struct Candidate {
    std::uint64_t content;
    std::size_t order;
    Node* node;
    Mesh* mesh;
};

// In the order of the scene's list.
std::vector<Candidate> Meshes(vl::Array* nodes, const vl::Context* context) {
    std::vector<Candidate> meshes;
    zrt::ContentHashes hashes;
    for (Node* node : vl::ArrayOf<Node*>(nodes)) {
        if (zrt::IsBreak(context)) break;
        vl::zr::Object3D* object = node->m_pObject;
        if (object == nullptr || (node->m_dwFlags & vl::zr::kNodeSystem) != 0) continue;
        if (!object->IsTypeOf("zr_mesh")) continue;
        auto* mesh = static_cast<Mesh*>(object);
        meshes.push_back({hashes.Of(*mesh), meshes.size(), node, mesh});
    }
    return meshes;
}

// The nodes that repeat an earlier one's mesh at its place, in the order of the scene's list. Most meshes of
// a scene are unlike any other: places matter only among meshes with equal content hashes.
std::vector<Node*> DuplicateMeshes(vl::Array* nodes, const vl::Context* context) {
    std::vector<Candidate> meshes = Meshes(nodes, context);
    std::vector<Node*> repeated(meshes.size());
    std::sort(meshes.begin(), meshes.end(), [](const Candidate& a, const Candidate& b) {
        return a.content != b.content ? a.content < b.content : a.order < b.order;
    });
    for (auto first = meshes.begin(); first != meshes.end();) {
        const auto last = std::find_if(first, meshes.end(),
                                       [&](const Candidate& mesh) { return mesh.content != first->content; });
        if (last - first == 1) {
            first = last;
            continue;
        }
        zrt::MeshIndex index;
        for (; first != last; ++first) {
            if (index.FindOrAdd(first->node, first->mesh, first->content))
                repeated[first->order] = first->node;
        }
    }
    std::erase(repeated, nullptr);
    return repeated;
}

}  // namespace

int CCleanerImpl::RemoveMeshDupes(vl::zr::Scene* scene, vl::Context* context, ChangeRecord* record) {
    if (scene == nullptr) return 0;
    return zrt::CountedWithNotify(scene, [&](int& count) {
        vl::Ref<vl::Array> dupes = zrt::NewList();
        for (Node* node : DuplicateMeshes(scene->m_pNodes, context)) dupes->Add(vl::ToWord(node));
        vl::Ref<vl::Array> deferred = zrt::NewList();
        for (int pass = 0; pass < kMaxDeletionPasses; ++pass) {
            deferred->RemoveAll();
            for (Node* node : vl::ArrayOf<Node*>(dupes.Get())) {
                if (zrt::IsBreak(context)) break;
                if (node->m_pFirstChild != nullptr) {
                    deferred->Add(vl::ToWord(node));
                    continue;
                }
                if (record != nullptr) record->RecordNodeRemoval(node, 0);
                node->Delete(0);
                ++count;
            }
            if (zrt::IsBreak(context) || deferred->m_nCount == 0) break;
            std::swap(dupes, deferred);
        }
    });
}
