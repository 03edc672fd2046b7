// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace zr::report {

// The page as the build made it, with places for title and data; empty in a build without it.
std::string_view PageSource();

}  // namespace zr::report
