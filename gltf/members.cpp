// SPDX-License-Identifier: MIT
#include "gltf/members.h"

namespace zr::gltf {

std::string_view NameOf(const Json& element) {
    const Json* name = element.Find("name");
    return name != nullptr ? name->String() : std::string_view();
}

const Json* FindExtension(const Json& element, std::string_view name) {
    const Json* extensions = element.Find("extensions");
    return extensions != nullptr ? extensions->Find(name) : nullptr;
}

Json* FindExtension(Json& element, std::string_view name) {
    Json* extensions = element.Find("extensions");
    return extensions != nullptr ? extensions->Find(name) : nullptr;
}

bool EraseExtension(Json& element, std::string_view name) {
    Json* extensions = element.Find("extensions");
    if (extensions == nullptr || !extensions->EraseMember(name)) return false;
    if (extensions->Members().empty()) element.EraseMember("extensions");
    return true;
}

const Json* FindMeshopt(const Json& bufferView) {
    for (const std::string_view name : kMeshopt)
        if (const Json* packed = FindExtension(bufferView, name)) return packed;
    return nullptr;
}

}  // namespace zr::gltf
