// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace zr::report {

// The page template that the build made, with placeholders for title and data; empty in a build without
// report pages.
std::string_view PageSource();

}  // namespace zr::report
