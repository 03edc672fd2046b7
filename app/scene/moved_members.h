// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
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
// The host's own members, which place or aim the object.
inline constexpr std::string_view kTargetMember = "extensions/ZR_scene/target";
inline constexpr std::string_view kPivotMember = "extensions/ZR_scene/pivot";
inline constexpr std::string_view kPivotGroupMember = "extensions/ZR_scene/pivotGroup";
inline constexpr std::string_view kObjectOffsetMember = "extensions/ZR_scene/objectOffset";
inline constexpr auto kMeshMembers = std::span(kObjectMembers).first<4>();
inline constexpr auto kAimMembers = std::span(kObjectMembers).last<2>();
inline constexpr auto kCameraMembers = kAimMembers.first<1>();
inline constexpr auto kLightMembers = kAimMembers.last<1>();

// The member of the node that the pointer names, or null.
const gltf::Json* FindMember(const gltf::Json& node, std::string_view member);

// Whether the node has any of them.
bool HasObject(const gltf::Json& node);

// Removes the member from the node, with any object that this empties, and returns its value; nothing if the
// node lacks it.
std::optional<gltf::Json> TakeMember(gltf::Json& node, std::string_view member);
// Sets the member, creating the objects that lead to it.
void PutMember(gltf::JsonTree& tree, gltf::Json& node, std::string_view member, const gltf::Json& value);

// Moves those of the members that the node has to a new node without a parent and returns its index; nothing
// if it has none.
std::optional<std::size_t> SplitMembers(gltf::Document& document, std::size_t node,
                                        std::span<const std::string_view> members);

// Updates references to members that moved to another node: pointers of animation channels and of behaviour
// graphs, and channels of morph weights. moved: from node to node.
void FollowMembers(gltf::Document& document, std::span<const std::string_view> members,
                   const std::unordered_map<std::size_t, std::size_t>& moved);

}  // namespace zr
