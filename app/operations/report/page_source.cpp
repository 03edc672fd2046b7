// SPDX-License-Identifier: MIT
#include "app/operations/report/page_source.h"

// Explicit assembler names: some compilers would add a prefix otherwise.
extern "C" {
extern const char zr_report_page[] __asm__("zr_report_page");
extern const char zr_report_page_end[] __asm__("zr_report_page_end");
}

namespace zr::report {

std::string_view PageSource() {
    return {zr_report_page, static_cast<std::size_t>(zr_report_page_end - zr_report_page)};
}

}  // namespace zr::report
