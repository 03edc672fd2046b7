// SPDX-License-Identifier: MIT
#include "app/scene/flip_objects.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <unordered_map>
#include <vector>

#include "app/scene/moved_members.h"
#include "app/scene/node_layout.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr {
namespace {

using gltf::Json;
using gltf::JsonTree;
using gltf::Kind;

using Transform = std::array<float, 16>;  // column by column

// Y and Z exchanged.
constexpr Transform kExchange = {1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1};

// The same with X negated as well: the proper rotation that takes -Z to -Y and Y to Z.
constexpr Transform kTurn = {-1, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 0, 0, 0, 1};

class ObjectFlipper {
public:
    explicit ObjectFlipper(gltf::Document& document) : m_document(document), m_tree(document.Tree()) {}

    void Run() {
        for (const std::size_t node : AllNodes()) {
            const std::array<float, 3> place = FlipPivot(node);
            const auto placed = [&place](Transform transform) {
                std::copy(place.begin(), place.end(), transform.begin() + 12);
                return transform;
            };
            const auto mesh = Split(node, kMeshMembers, placed(kExchange));
            if (mesh) m_meshNodes[node] = *mesh;
            const auto aimed = Split(node, kAimMembers, placed(kTurn));
            if (!aimed) continue;
            m_aimNodes[node] = *aimed;
            // The target of a camera or light moves with it.
            if (const auto target = TakeMember(Element(Kind::kNode, node), kTargetMember))
                PutMember(m_tree, Element(Kind::kNode, *aimed), kTargetMember, *target);
        }
        for (const std::size_t skin : m_skins) FlipSkin(skin);
        FollowMembers(m_document, kMeshMembers, m_meshNodes);
        FollowMembers(m_document, kAimMembers, m_aimNodes);
    }

private:
    Json& Element(Kind kind, std::size_t index) { return m_document.Elements(kind)[index]; }

    // Parents first.
    std::vector<std::size_t> AllNodes() {
        std::vector<std::size_t> nodes = AllRoots(m_document);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const Json* children = Element(Kind::kNode, nodes[i]).Find("children");
            if (children == nullptr) continue;
            for (const Json& child : children->Items())
                nodes.push_back(static_cast<std::size_t>(*child.Index()));
        }
        return nodes;
    }

    // Exchanges the axes of a node's pivot and returns where its object stands. An object-only pivot is
    // removed, since the node no longer has an object.
    std::array<float, 3> FlipPivot(std::size_t node) {
        Json& json = Element(Kind::kNode, node);
        Json* own = gltf::FindExtension(json, "ZR_scene");
        Json* pivot = own != nullptr ? own->Find("pivot") : nullptr;
        if (pivot == nullptr) return {};
        std::swap(pivot->Items()[1], pivot->Items()[2]);
        const Json* group = own->Find("pivotGroup");
        if (group != nullptr && group->Bool()) return {};
        std::array<float, 3> place;
        for (std::size_t i = 0; i < 3; ++i) place[i] = 0 - static_cast<float>(pivot->Items()[i].Number());
        TakeMember(json, kPivotMember);
        TakeMember(json, kPivotGroupMember);
        return place;
    }

    // Moves those of the members that the node has, if any, to a new child with the transform.
    std::optional<std::size_t> Split(std::size_t node, std::span<const std::string_view> members,
                                     const Transform& transform) {
        const auto child = SplitMembers(m_document, node, members);
        if (!child) return std::nullopt;
        Json& content = Element(Kind::kNode, *child);
        if (const Json* skin = content.Find("skin")) m_skins.insert(static_cast<std::size_t>(*skin->Index()));
        m_tree.Member(content, "matrix") = m_tree.MakeNumbers(transform);
        Json& list = m_tree.Member(Element(Kind::kNode, node), "children");
        if (!list.IsArray()) list = JsonTree::MakeArray();
        m_tree.Append(list, m_tree.MakeIndex(*child));
        return child;
    }

    void FlipSkin(std::size_t index) {
        const Json& skin = Element(Kind::kSkin, index);
        std::vector<float> binds;
        if (const Json* accessor = skin.Find("inverseBindMatrices")) {
            const auto source = static_cast<std::size_t>(*accessor->Index());
            if (!gltf::HasData(m_document, source)) {
                throw std::runtime_error(
                    "skins[" + std::to_string(index) +
                    "]: the inverse bind matrices are stored in a form that cannot be read");
            }
            binds = gltf::ReadFloats(m_document, source);
        } else {
            const Json* joints = skin.Find("joints");
            const std::size_t count = joints != nullptr ? joints->Items().size() : 0;
            for (std::size_t i = 0; i < 16 * count; ++i) binds.push_back(i % 16 % 5 == 0 ? 1.0f : 0.0f);
        }
        for (std::size_t column = 0; column + 4 <= binds.size(); column += 4) {
            std::swap(binds[column + 1], binds[column + 2]);
        }
        const std::size_t accessor = gltf::AppendFloats(m_document, "MAT4", gltf::Use::kInverseBinds, binds);
        m_tree.Member(Element(Kind::kSkin, index), "inverseBindMatrices") = m_tree.MakeIndex(accessor);
    }

    gltf::Document& m_document;
    JsonTree& m_tree;
    std::unordered_map<std::size_t, std::size_t> m_meshNodes;  // the child that took a node's mesh
    std::unordered_map<std::size_t, std::size_t> m_aimNodes;   // likewise for its camera or light
    std::set<std::size_t> m_skins;
};

}  // namespace

void FlipObjects(gltf::Document& document) {
    ObjectFlipper(document).Run();
}

}  // namespace zr
