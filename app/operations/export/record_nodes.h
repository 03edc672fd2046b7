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
    std::vector<std::size_t> rejected;  // nodes of the scene that no record stands for
    std::vector<std::size_t> bare;      // nodes that lose their mesh
};

// The nodes that the records of a run stand for. The first record of a node keeps the node's place in the
// document, so that every reference to it holds; other records become new nodes. A node's object goes to the
// record that carries it, and pivots and offsets that the records spell out leave ZR_scene.
RecordNodes NodesOf(const LoadedScene& loaded, const Tool& tool, const ExportOptions& options);

// Whether two runs made the same records of the same nodes.
bool SameStructure(const Tool& a, const Tool& b);

// Whether the keys of a run fit the records of another one: the moved nodes have a record there, at the top
// where they are at the top here.
bool KeysFit(const Tool& keys, const Tool& records);

}  // namespace zr
