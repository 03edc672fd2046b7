// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zr {

// Whether a name matches one of the shell patterns (*, ?, [a-z]).
bool MatchesAny(const std::vector<std::string>& patterns, std::string_view name);

}  // namespace zr
