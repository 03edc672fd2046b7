// SPDX-License-Identifier: MIT
#include "app/operations/report/page_source.h"

namespace zr::report {

std::string_view PageSource() {
    return {};
}

}  // namespace zr::report
