// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "host/export_node.h"
#include "kernix/scene/scene_model.h"

namespace zr {

// The record's transform relative to its parent record when nothing moves. A record's own mLocal is that of
// the scene's current time, which an animation may have moved away from rest.
vl::Matrix4<double> RestLocal(const ExportNode& record, const ExportOptions& options);

// Whether the record stands, relative to its parent, where its node does in the scene. Rounding counts for
// nothing. False for a record without a node.
bool StandsAsItsNode(const ExportNode& record, const ExportOptions& options);

// Whether the tools place the record, of a camera or light, where the host shows the object and not where its
// node stands; shown is then the transform between the two, at the scene's current time.
bool PlacesObject(const ExportNode& record, const ExportOptions& options, vl::Matrix4<double>& shown);

}  // namespace zr
