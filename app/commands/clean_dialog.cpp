// SPDX-License-Identifier: MIT
#include "app/commands/clean_dialog.h"

#include "app/commands/windows.h"
#include "app/services/host.h"
#include "host/cleaner.h"

namespace zr {

void RunCleanDialog(Host& host, vl::zr::Scene& scene) {
    StartWindows();
    host.Create<zr_CLEANER>(kTypeCleaner)->RunDialog(&scene);
}

}  // namespace zr
