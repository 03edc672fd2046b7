// SPDX-License-Identifier: MIT
#include "app/services/help.h"

#include "base/process.h"

namespace zr {

std::filesystem::path HelpPage(std::string_view page) {
    return ProgramFile().parent_path().parent_path() / "share" / "zrtools" / "help" / page;
}

}  // namespace zr
