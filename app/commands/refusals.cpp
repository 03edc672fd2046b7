// SPDX-License-Identifier: MIT
#include "app/commands/refusals.h"

#include <set>

#include "base/text.h"

namespace zr {

std::vector<std::string> RefusalLines(std::string_view what, const std::vector<gltf::OpaqueUse>& uses) {
    std::vector<std::string> lines;
    std::set<std::string_view> reported;
    for (const gltf::OpaqueUse& use : uses) {
        if (!reported.insert(use.extension).second) continue;
        lines.push_back(Join(what, ": the extension ", use.extension, " at ", use.place,
                             " could refer to it (--force removes it anyway)"));
    }
    return lines;
}

}  // namespace zr
