// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "module/frame/globals.h"
#include "module/keyframe/export_node.h"

namespace zrt {

// Frees a record with all below it: children before their parent, then names, keys and tracks.
void DestroyExportNode(ExportNode* record);

// Lists child last in parent's children and sets its pParent.
void AppendChild(ExportNode* parent, ExportNode* child);

// Moves all children of from below to, in their order; from keeps an empty list.
void MoveChildren(ExportNode* from, ExportNode* to);

// A new key at the end of a track, which is created when it is null.
template <typename Key>
Key* AddKey(vl::Array*& track) {
    if (track == nullptr) track = g_pHost->CreateArray();
    auto* key = new Key();
    track->Add(vl::ToWord(key));
    return key;
}

template <typename Key>
void DestroyTrack(vl::Array*& track) {
    if (track == nullptr) return;
    for (Key* key : vl::ArrayOf<Key*>(track)) delete key;
    track->Release();
    track = nullptr;
}

// The times of a record's keys, and of its ancestors' when asked: ascending, each once.
std::vector<float> KeyTimes(const ExportNode* record, bool withAncestors);

// Visits every record before its children, in order, however deep the tree is. visit(record) returns the
// record whose children come next (the record itself, one made in its place) or null to go no deeper; it
// may change children, not the list that is walked.
template <typename Visit>
void WalkRecords(vl::Array* records, Visit visit) {
    std::vector<ExportNode*> pending;
    const auto pushReversed = [&pending](vl::Array* list) {
        const vl::ArrayOf<ExportNode*> view(list);
        for (int i = view.Count() - 1; i >= 0; --i) pending.push_back(view[i]);
    };
    pushReversed(records);
    while (!pending.empty()) {
        ExportNode* record = pending.back();
        pending.pop_back();
        if (const ExportNode* next = visit(record)) pushReversed(next->pChildren);
    }
}

}  // namespace zrt
