// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "host/export_node.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The record's rest transform, relative to its parent record. mLocal would be the transform at the scene's
// current time, at which an animation may have moved the node.
vl::Matrix4<double> RestLocal(const ExportNode& record, const ExportOptions& options);

// Whether the record's rest transform is that of its node in the scene, up to rounding. False for a record
// without a node.
bool KeepsRestTransform(const ExportNode& record, const ExportOptions& options);

// Whether the record is that of a camera or light that the tools place where the host shows the object
// instead of where its node is. `shown` then receives the transform of the object relative to its node, at
// the scene's current time.
bool PlacesObject(const ExportNode& record, const ExportOptions& options, vl::Matrix4<double>& shown);

}  // namespace zr
