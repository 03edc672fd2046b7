// SPDX-License-Identifier: MIT
#include "app/scene/moved_members.h"

#include <algorithm>
#include <string>

#include "gltf/references.h"

namespace zr {
namespace {

// Whether a path is the member or leads into it.
bool LeadsInto(std::string_view path, std::string_view member) {
    return path.starts_with(member) && (path.size() == member.size() || path[member.size()] == '/');
}

// The path below its node that the reference names; empty for the node itself.
std::string_view PathBelowNode(const gltf::Reference& reference) {
    if (reference.target.textSize != 0) {
        const std::string_view pointer = reference.value.String();
        const std::size_t end = reference.target.textOffset + reference.target.textSize;
        return end < pointer.size() ? pointer.substr(end + 1) : std::string_view();
    }
    if (!reference.owner || reference.owner->kind != gltf::Kind::kAnimation) return {};
    const auto steps = reference.place.Steps();
    const gltf::Json* path = steps[steps.size() - 2].value->Find("path");
    return path != nullptr ? path->String() : std::string_view();
}

}  // namespace

const gltf::Json* FindMember(const gltf::Json& node, std::string_view member) {
    const std::size_t slash = member.find('/');
    if (slash == std::string_view::npos) return node.Find(member);
    const gltf::Json* holder = node.Find(member.substr(0, slash));
    return holder != nullptr ? FindMember(*holder, member.substr(slash + 1)) : nullptr;
}

bool HasObject(const gltf::Json& node) {
    return std::any_of(std::begin(kObjectMembers), std::end(kObjectMembers),
                       [&](std::string_view member) { return FindMember(node, member) != nullptr; });
}

std::optional<gltf::Json> TakeMember(gltf::Json& node, std::string_view member) {
    const std::size_t slash = member.find('/');
    const std::string_view name = member.substr(0, slash);
    gltf::Json* found = node.Find(name);
    if (found == nullptr) return std::nullopt;
    std::optional<gltf::Json> taken;
    if (slash == std::string_view::npos) {
        taken = *found;
    } else {
        taken = TakeMember(*found, member.substr(slash + 1));
        if (!taken || !found->Members().empty()) return taken;
    }
    node.EraseMember(name);
    return taken;
}

void PutMember(gltf::JsonTree& tree, gltf::Json& node, std::string_view member, const gltf::Json& value) {
    const std::size_t slash = member.find('/');
    gltf::Json& found = tree.Member(node, member.substr(0, slash));
    if (slash == std::string_view::npos) {
        found = value;
        return;
    }
    if (!found.IsObject()) found = gltf::JsonTree::MakeObject();
    PutMember(tree, found, member.substr(slash + 1), value);
}

std::optional<std::size_t> SplitMembers(gltf::Document& document, std::size_t node,
                                        std::span<const std::string_view> members) {
    gltf::Json content = gltf::JsonTree::MakeObject();
    for (const std::string_view member : members) {
        if (const auto value = TakeMember(document.Elements(gltf::Kind::kNode)[node], member))
            PutMember(document.Tree(), content, member, *value);
    }
    if (content.Members().empty()) return std::nullopt;
    return document.Append(gltf::Kind::kNode, content);
}

void FollowMembers(gltf::Document& document, std::span<const std::string_view> members,
                   const std::unordered_map<std::size_t, std::size_t>& moved) {
    if (moved.empty()) return;
    gltf::ForEachReference(document, {gltf::Kind::kNode}, [&](const gltf::Reference& reference) {
        const gltf::Target& target = reference.target;
        const auto found = moved.find(target.index);
        if (found == moved.end()) return;
        const std::string_view path = PathBelowNode(reference);
        if (std::none_of(members.begin(), members.end(),
                         [&](auto member) { return LeadsInto(path, member); }))
            return;
        if (target.textSize == 0) {
            reference.value = document.Tree().MakeIndex(found->second);
            return;
        }
        std::string text(reference.value.String());
        text.replace(target.textOffset, target.textSize, std::to_string(found->second));
        reference.value = document.Tree().MakeString(text);
    });
}

}  // namespace zr
