// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/export/export_options.h"
#include "app/operations/export/motion_report.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "base/file_transaction.h"

namespace zr {

// Exports the scene as the records themselves (WriteRecordJson), those of each animation written as soon as
// they are made: one object for one animation or none; for several {"animations"}, a list of such objects
// with names. Throws as ExportScene does. renameMap: null, or receives the map of the first (RenameMap).
MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options,
                           const ExportProgress& progress, OutputFile& file,
                           std::string* renameMap = nullptr);

}  // namespace zr
