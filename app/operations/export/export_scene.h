// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "app/operations/export/export_options.h"
#include "app/operations/export/motion_report.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "base/file_transaction.h"
#include "gltf/references.h"

namespace zr {

// How a document is loaded for an export: its default scene, as records hold it, or the whole document.
SceneOptions SceneOptionsOf(const ExportOptions& options, bool whole);

// Told now and then how much is done, 0 to 1; may throw to stop the export.
using ExportProgress = std::function<void(double)>;

struct Exported {
    gltf::Document document;
    MotionReport report;
    std::vector<gltf::OpaqueUse> refusals;  // why what the export left unused stays in the document
};

// Runs the keyframe tools once for all of the scene's animations, gathers the keys of each, and writes what
// the records stand for into the document: nodes, rest transforms and keys. What nothing refers to any more
// then goes; what nothing referred to before stays. Throws std::runtime_error when two animations would need
// different nodes, when keys that cannot be read would have to change, when nothing is to be exported, and
// when the motion comes out further off than the options allow. renameMap: null, or receives the text of the
// map (RenameMap).
Exported ExportScene(Host& host, LoadedScene&& loaded, const ExportOptions& options,
                     const ExportProgress& progress, std::string* renameMap = nullptr);

// The same for the active animation, as the records themselves.
MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options, OutputFile& file,
                           std::string* renameMap = nullptr);

}  // namespace zr
