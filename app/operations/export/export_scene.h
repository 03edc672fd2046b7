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

// How a document is loaded for an export: its default scene, as records hold it, or the whole document.
SceneOptions SceneOptionsOf(const ExportOptions& options, bool whole);

// Where the time of an exported animation stands in that of the source: time * scale + offset, seconds, no
// earlier than `from` and no later than `to`.
struct SourceTime {
    std::string animation;
    double scale = 1, offset = 0, from = 0, to = 0;
};

struct Exported {
    gltf::Document document;
    MotionReport report;
    std::vector<gltf::OpaqueUse> refusals;  // why what the export left unused stays in the document
    std::vector<SourceTime> times;          // of every animation with keys
};

// Runs the keyframe tools once for all of the scene's animations, gathers the keys of each, and writes what
// the records stand for into the document: nodes, rest transforms and keys. What nothing refers to any more
// then goes; what nothing referred to before stays. Throws std::runtime_error when two animations would need
// different nodes, when keys that cannot be read would have to change, when nothing is to be exported, and
// when the motion comes out further off than the options allow. renameMap: null, or receives the text of the
// map (RenameMap).
Exported ExportScene(Host& host, LoadedScene&& loaded, const ExportOptions& options,
                     const ExportProgress& progress, std::string* renameMap = nullptr);

}  // namespace zr
