// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/export/export_options.h"
#include "app/operations/export/motion_report.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "base/file_transaction.h"

namespace zr {

// Exports the scene as JSON records (WriteRecordJson), written animation by animation: for one animation or
// none a single object; for several, {"animations": [...]} with such an object, and its name, for each.
// Throws like ExportScene. renameMap: null, or receives the rename map of the first animation (RenameMap).
MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options,
                           const ExportProgress& progress, OutputFile& file,
                           std::string* renameMap = nullptr);

}  // namespace zr
