// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <vector>

#include "app/operations/export/tool_run.h"
#include "app/scene/document_changes.h"
#include "app/scene/loaded_scene.h"

namespace zr {

struct RecordNodes {
    ChangedNodes changes;
    std::vector<std::size_t> indices;   // the node of each record, in the order of the records
    std::vector<std::size_t> rejected;  // nodes to remove: no record stands for them
    std::vector<std::size_t> bare;      // nodes that lose their mesh
};

// The nodes that the records of a run become. The first record of a node keeps the node's index, so that
// references to it stay valid; other records become new nodes. A node's object moves to the record that
// carries it; pivots and offsets that the records express as nodes are removed from ZR_scene.
RecordNodes NodesOf(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options);

// Whether two runs made the same tree of records for the same nodes.
bool SameStructure(const Tool& a, const Tool& b);

// Whether the keys of a run fit the records of another: each animated node has a record there, which is a
// root exactly if it is one here.
bool KeysFit(const Tool& keys, const Tool& records);

}  // namespace zr
