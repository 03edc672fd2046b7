// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "app/operations/export/export_options.h"
#include "app/operations/export/motion_report.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "gltf/references.h"

namespace zr {

// How to load a document for an export. whole: the whole document; otherwise its default scene, as for
// records.
SceneOptions SceneOptionsOf(const ExportOptions& options, bool whole);

// Maps the time of an exported animation to that of its source: time * scale + offset, in seconds, clamped to
// `from` and `to`.
struct SourceTime {
    std::string animation;
    double scale = 1, offset = 0, from = 0, to = 0;
};

struct Exported {
    gltf::Document document;
    MotionReport report;
    std::vector<gltf::OpaqueUse> refusals;  // why elements that became unused stay in the document
    std::vector<SourceTime> times;          // of every animation with keys
};

// Runs the keyframe tools once for all of the scene's animations, gathers the keys of each, and applies the
// resulting nodes, rest transforms and keys to the document. Elements that become unused are removed;
// elements that were unused before stay. Throws std::runtime_error when two animations need different nodes,
// when keys that cannot be read would have to change, when there is nothing to export, and when the motion
// deviates more than the options allow. renameMap: null, or receives the rename map (RenameMap).
Exported ExportScene(Host& host, LoadedScene&& loaded, const ExportOptions& options,
                     const ExportProgress& progress, std::string* renameMap = nullptr);

}  // namespace zr
