// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "app/operations/export/export_options.h"
#include "app/operations/export/motion_report.h"
#include "app/scene/loaded_scene.h"
#include "app/services/host.h"
#include "base/file_transaction.h"

namespace zr {

// What ExportScene makes of a scene as the records themselves, written as they come (WriteRecordJson): of one
// animation or none an object, of several {"animations"}, a list of such objects with names. The map is that
// of the first.
MotionReport ExportRecords(Host& host, LoadedScene& loaded, const ExportOptions& options,
                           const ExportProgress& progress, OutputFile& file,
                           std::string* renameMap = nullptr);

}  // namespace zr
