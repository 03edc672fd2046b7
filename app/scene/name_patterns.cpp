// SPDX-License-Identifier: MIT
#include "app/scene/name_patterns.h"

#include <fnmatch.h>

#include <algorithm>

namespace zr {

bool MatchesAny(const std::vector<std::string>& patterns, std::string_view name) {
    return std::any_of(patterns.begin(), patterns.end(), [&](const std::string& pattern) {
        return fnmatch(pattern.c_str(), std::string(name).c_str(), 0) == 0;
    });
}

}  // namespace zr
