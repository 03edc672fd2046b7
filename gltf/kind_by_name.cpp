// SPDX-License-Identifier: MIT
#include "gltf/kind_by_name.h"

#include <algorithm>
#include <string>

namespace zr::gltf {
namespace {

std::string LowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return lower;
}

}  // namespace

std::optional<Kind> KindByName(std::string_view name) {
    const std::string lower = LowerCase(name);
    if (lower.find("joint") != std::string::npos || lower.find("bone") != std::string::npos)
        return Kind::kNode;
    // The longest noun wins: "bufferView" contains "buffer".
    std::optional<Kind> found;
    std::size_t length = 0;
    for (std::size_t i = 0; i < kKinds; ++i) {
        const std::string noun = LowerCase(kKindInfo[i].noun);
        if (noun.size() <= length || lower.find(noun) == std::string::npos) continue;
        found = static_cast<Kind>(i);
        length = noun.size();
    }
    return found;
}

}  // namespace zr::gltf
