// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_map>

#include "gltf/document.h"

namespace zr {

// Members of a node that belong to what it shows, as named in pointers into the node.
inline constexpr std::string_view kObjectMembers[] = {
    "mesh",    "skin",
    "weights", "extensions/EXT_mesh_gpu_instancing",
    "camera",  "extensions/KHR_lights_punctual",
};
inline constexpr std::string_view kInExtensions = "extensions/";
inline constexpr auto kMeshMembers = std::span(kObjectMembers).first<4>();
inline constexpr auto kAimMembers = std::span(kObjectMembers).last<2>();
inline constexpr auto kCameraMembers = kAimMembers.first<1>();
inline constexpr auto kLightMembers = kAimMembers.last<1>();

// The member of the node that the pointer names, or null.
const gltf::Json* FindMember(const gltf::Json& node, std::string_view member);

// Whether the node has any of them.
bool HasObject(const gltf::Json& node);

// Updates what refers to members that moved to another node: pointers of animation channels and of behaviour
// graphs, and channels of morph weights. moved: from node to node.
void FollowMembers(gltf::Document& document, std::span<const std::string_view> members,
                   const std::unordered_map<std::size_t, std::size_t>& moved);

}  // namespace zr
