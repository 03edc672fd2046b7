// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "gltf/document.h"

namespace zr {

// An export turns the nodes of cameras and lights towards their targets. If such a node also has something
// that must not turn (children, a joint, another object), moves the camera or light to a new child node,
// unless the options do not export it or split nodes anyway.
void SplitAims(gltf::Document& document, const ExportOptions& options);

}  // namespace zr
