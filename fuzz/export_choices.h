// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "tests/base/random.h"

namespace zr::fuzz {

// Options as a command line can give them.
ExportOptions MakeExportOptions(test::Random& choices);

}  // namespace zr::fuzz
