// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "gltf/json.h"

namespace zr {

// The members of a node of a document, found in one pass; null for those that it lacks.
struct NodeParts {
    explicit NodeParts(const gltf::Json& node) {
        for (const gltf::JsonMember& member : node.Members()) {
            const std::string_view key = member.Name();
            const gltf::Json* const value = &member.value;
            switch (key.size()) {
                case 4:
                    if (key == "mesh") mesh = value;
                    if (key == "name") name = value->String();
                    if (key == "skin") skin = value;
                    break;
                case 5:
                    if (key == "scale") scale = value;
                    break;
                case 6:
                    if (key == "camera") camera = value;
                    if (key == "matrix") matrix = value;
                    if (key == "extras") extras = value;
                    break;
                case 7:
                    if (key == "weights") weights = value;
                    break;
                case 8:
                    if (key == "rotation") rotation = value;
                    break;
                case 10:
                    if (key == "extensions") extensions = value;
                    break;
                case 11:
                    if (key == "translation") translation = value;
                    break;
                default:
                    break;
            }
        }
    }

    std::string_view name;
    const gltf::Json* mesh = nullptr;
    const gltf::Json* skin = nullptr;
    const gltf::Json* camera = nullptr;
    const gltf::Json* weights = nullptr;
    const gltf::Json* matrix = nullptr;
    const gltf::Json* translation = nullptr;
    const gltf::Json* rotation = nullptr;
    const gltf::Json* scale = nullptr;
    const gltf::Json* extensions = nullptr;
    const gltf::Json* extras = nullptr;
};

}  // namespace zr
