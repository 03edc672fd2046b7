// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "gltf/document.h"

namespace zr {

// Cameras and lights turn to what they aim at, and an export turns their nodes. Gives those that share their
// node with others, which must not turn (children, a joint, another object), a child node of their own,
// unless the options export neither them nor nodes that are split already.
void SplitAims(gltf::Document& document, const ExportOptions& options);

}  // namespace zr
