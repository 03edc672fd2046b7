// SPDX-License-Identifier: MIT
#include "app/operations/export/record_scenes.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <new>

#include "app/operations/export/record_names.h"
#include "kernix/array.h"

namespace zr {
namespace {

const ExportNode& TopOf(const ExportNode& record) {
    const ExportNode* top = &record;
    while (top->pParent != nullptr && (top->pParent->dwFlags & NF_ROOT) == 0) top = top->pParent;
    return *top;
}

vl::ArrayOf<ExportNode*> ChildrenOf(const ExportNode& record) {
    return vl::ArrayOf<ExportNode*>(record.pChildren);
}

ExportNode* GroupingRoot(const Tool& tool) {
    for (ExportNode* root : vl::ArrayOf<ExportNode*>(tool->m_pRoots))
        if ((root->dwFlags & NF_ROOT) != 0) return root;
    return nullptr;
}

// Adds another grouping root like the one the tools made.
ExportNode* AddRootLike(const Tool& tool, const ExportNode& root) {
    ExportNode* added = tool->AddNode(nullptr, NameOf(root).c_str());
    if (added == nullptr) throw std::bad_alloc();
    added->dwFlags = root.dwFlags;
    added->mLocal = root.mLocal;
    added->mWorld = root.mWorld;
    added->vPosition = root.vPosition;
    added->vScale = root.vScale;
    added->qRotation = root.qRotation;
    added->qStretch = root.qStretch;
    added->pChildren = kernix::CreateArray();
    tool->m_pRoots->Add(vl::ToWord(added));
    return added;
}

}  // namespace

RecordScenes::RecordScenes(const LoadedScene& loaded, const Tool& tool) : m_loaded(loaded), m_tool(tool) {
    const auto& scenes = loaded.Parts().layout.scenes;
    for (std::size_t i = 0; i < scenes.size(); ++i)
        for (const std::size_t root : scenes[i]) m_scenes[root].push_back(i);
    for (const ExportNode* record : AllRecords(tool)) {
        if (record->pTarget == nullptr || SourceOf(*record->pTarget)) continue;
        const std::vector<std::size_t> from = Of(TopOf(*record));
        std::vector<std::size_t>& known = m_aimedAt[record->pTarget];
        std::vector<std::size_t> both;
        std::set_union(known.begin(), known.end(), from.begin(), from.end(), std::back_inserter(both));
        known = std::move(both);
    }
}

// The node that the record was built from or, for a record that carries the scene matrix, the node of the
// record below it.
std::optional<std::size_t> RecordScenes::SourceOf(const ExportNode& record) const {
    return m_loaded.IndexOf((record.dwFlags & NF_POST) != 0 ? record.pNode : record.pSourceNode);
}

std::vector<std::size_t> RecordScenes::Of(const ExportNode& record) const {
    if ((record.dwFlags & NF_ROOT) != 0) return Of(*ChildrenOf(record)[0]);
    if (const auto source = SourceOf(record)) {
        const auto listed = m_scenes.find(m_loaded.Parts().layout.BaseOf(*source));
        return listed != m_scenes.end() ? listed->second : std::vector<std::size_t>();
    }
    const auto aimedAt = m_aimedAt.find(&record);
    if (aimedAt != m_aimedAt.end()) return aimedAt->second;
    return {m_loaded.Parts().layout.shown};  // the view camera
}

bool RecordScenes::IsDetachedLevel(const ExportNode& record) const {
    const auto source = SourceOf(record);
    return source && m_loaded.Parts().layout.standsFor[*source] != NodeLayout::kNone;
}

std::vector<std::vector<const ExportNode*>> RecordScenes::Roots() const {
    const auto& scenes = m_loaded.Parts().layout.scenes;
    std::vector<std::vector<const ExportNode*>> roots(scenes.size());
    for (const ExportNode* root : vl::ArrayOf<ExportNode*>(m_tool->m_pRoots)) {
        if (IsDetachedLevel(*root)) continue;
        for (const std::size_t scene : Of(*root)) roots[scene].push_back(root);
    }
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        std::unordered_map<std::size_t, std::size_t> places;
        for (const std::size_t root : scenes[i]) places.insert({root, places.size()});
        const auto place = [&](const ExportNode* root) {
            const auto source = SourceOf(*root);
            return source ? places.at(*source) : places.size();
        };
        std::stable_sort(roots[i].begin(), roots[i].end(),
                         [&](const ExportNode* a, const ExportNode* b) { return place(a) < place(b); });
    }
    return roots;
}

void GroupByScenes(const LoadedScene& loaded, const Tool& tool) {
    ExportNode* const root = GroupingRoot(tool);
    if (root == nullptr) return;
    const RecordScenes scenes(loaded, tool);
    const vl::ArrayOf<ExportNode*> children = ChildrenOf(*root);
    const std::vector<ExportNode*> all(children.begin(), children.end());
    std::map<std::vector<std::size_t>, ExportNode*> roots{{scenes.Of(*root), root}};
    root->pChildren->RemoveAll();
    for (ExportNode* record : all) {
        ExportNode*& own = roots[scenes.Of(*record)];
        if (own == nullptr) own = AddRootLike(tool, *root);
        own->pChildren->Add(vl::ToWord(record));
        record->pParent = own;
    }
}

}  // namespace zr
