// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include "gltf/json.h"

// Members that elements of any kind may have.
namespace zr::gltf {

// The element's name; empty if it has none.
std::string_view NameOf(const Json& element);

// The member of "extensions" of that name, or null.
const Json* FindExtension(const Json& element, std::string_view name);
Json* FindExtension(Json& element, std::string_view name);

// Removes the extension, and "extensions" with the last one. Returns whether there was one.
bool EraseExtension(Json& element, std::string_view name);

// Two names of one extension: how meshopt packed the bytes of a buffer view.
inline constexpr std::string_view kMeshopt[] = {"EXT_meshopt_compression", "KHR_meshopt_compression"};
// The extension under either name; null where the view is not packed.
const Json* FindMeshopt(const Json& bufferView);

}  // namespace zr::gltf
