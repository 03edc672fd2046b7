// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <vector>

#include "host/export_node.h"
#include "host/ref.h"
#include "module/frame/globals.h"

namespace zrt {

// A new host array. Throws std::bad_alloc.
inline vl::Ref<vl::Array> NewArray() {
    return vl::Ref<vl::Array>::AdoptNew(g_pHost->CreateArray());
}

// Frees a record with its names, keys and lists. Its children are records of their own.
struct RecordDeleter {
    void operator()(ExportNode* record) const;
};
using OwnedRecord = std::unique_ptr<ExportNode, RecordDeleter>;

// The list, which is created if it is null.
inline vl::Array* Made(vl::Array*& list) {
    if (list == nullptr) list = NewArray().Detach();
    return list;
}

// Lists child last in parent's children and sets its pParent.
void AppendChild(ExportNode* parent, ExportNode* child);

// Moves all children of from below to, in their order; from keeps an empty list.
void MoveChildren(ExportNode* from, ExportNode* to);

// Appends a new key to a track, which is created if it is null. Throws std::bad_alloc.
template <typename Key>
Key* AddKey(vl::Array*& track) {
    auto key = std::make_unique<Key>();
    Made(track)->Add(vl::ToWord(key.get()));
    return key.release();
}

template <typename Key>
void DestroyTrack(vl::Array*& track) {
    if (track == nullptr) return;
    for (Key* key : vl::ArrayOf<Key*>(track)) delete key;
    track->Release();
    track = nullptr;
}

// A total order of times: NaN comes last.
bool IsEarlier(float a, float b);

// Merges two ascending lists of times, each time once; of equal ones, the one from a.
std::vector<float> Union(const std::vector<float>& a, const std::vector<float>& b);

// The times of a record's keys, and of its ancestors' if withAncestors: ascending, each once.
std::vector<float> KeyTimes(const ExportNode* record, bool withAncestors);

// The same with 0.0 added, unless the list is empty.
std::vector<float> KeyTimesFromZero(const ExportNode* record, bool withAncestors);

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
