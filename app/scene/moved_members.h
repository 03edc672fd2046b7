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
// Of the host's own, where what the node shows stands or turns.
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

// Takes the member out of the node, and with it what held nothing else; nothing where the node lacks it.
std::optional<gltf::Json> TakeMember(gltf::Json& node, std::string_view member);
void PutMember(gltf::JsonTree& tree, gltf::Json& node, std::string_view member, const gltf::Json& value);

// Moves members of a node, if it has any of them, to a new node without parent, whose index is returned.
std::optional<std::size_t> SplitMembers(gltf::Document& document, std::size_t node,
                                        std::span<const std::string_view> members);

// Updates what refers to members that moved to another node: pointers of animation channels and of behaviour
// graphs, and channels of morph weights. moved: from node to node.
void FollowMembers(gltf::Document& document, std::span<const std::string_view> members,
                   const std::unordered_map<std::size_t, std::size_t>& moved);

}  // namespace zr
