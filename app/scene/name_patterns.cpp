// SPDX-License-Identifier: MIT
#include "app/scene/name_patterns.h"

#include <algorithm>

#include "base/pattern.h"

namespace zr {

bool MatchesAny(const std::vector<std::string>& patterns, std::string_view name) {
    return std::any_of(patterns.begin(), patterns.end(),
                       [&](const std::string& pattern) { return FitsPattern(name, pattern); });
}

}  // namespace zr
