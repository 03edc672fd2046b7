// SPDX-License-Identifier: MIT
#pragma once

#include "app/operations/export/export_options.h"
#include "tests/base/random.h"

namespace zr::fuzz {

// Random options that a command line could give.
ExportOptions MakeExportOptions(test::Random& choices);

}  // namespace zr::fuzz
