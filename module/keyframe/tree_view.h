// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

#include "host/array.h"
#include "host/export_node.h"
#include "platform/windows.h"

namespace zrt {

inline constexpr std::size_t kMaxTreeLabel = 511;

// What the tree shows of a record, cut to kMaxTreeLabel bytes: name, flags, key counts, type of the node's
// object, the node's own description.
//
//   object |<[group|add]NULL
//   box |<[Geometry][Animation: r:2 t:5]Object 3d [a box]
std::string TreeLabel(const ExportNode& record);

// Inserts the records and all below them under `parent`, each last among its siblings.
void AddTreeItems(HWND tree, HTREEITEM parent, vl::Array* records);

}  // namespace zrt
