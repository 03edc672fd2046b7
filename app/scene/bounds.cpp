// SPDX-License-Identifier: MIT
#include "app/scene/bounds.h"

#include <algorithm>
#include <map>
#include <span>
#include <utility>

#include "gltf/accessor.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

using M = vl::Matrix4<double>;

Bounds BoxOf(std::span<const float> positions) {
    Bounds box;
    for (std::size_t i = 0; i + 2 < positions.size(); i += 3) {
        box.Widen({positions[i], positions[i + 1], positions[i + 2]});
    }
    return box;
}

M World(kernix::NodeModel& node) {
    M world;
    node.GetWorldMatrix(&world, 1);
    return world;
}

// The world transform of the node's object, which an object-only pivot offsets.
M ObjectWorld(kernix::NodeModel& node) {
    M world;
    world.IdentityMatrix();
    if (node.m_pObjectOffset != nullptr) world = *node.m_pObjectOffset;
    const auto* controller =
        static_cast<kernix::TransformControllerModel*>(node.GetController(vl::zr::kControllerTransform));
    if (controller != nullptr && (controller->m_dwFlags & vl::zr::kControllerPivotGroup) == 0) {
        world.Offset(
            vl::Vector3<float>{-controller->m_offset.x, -controller->m_offset.y, -controller->m_offset.z});
    }
    world.Transform(World(node));
    return world;
}

// A skinned vertex lies in the convex hull of the positions that its joints give it.
void WidenBySkin(const LoadedScene& loaded, const Json& skin, const Bounds& box, Bounds& bounds) {
    const gltf::Document& document = loaded.Document();
    const std::size_t none = document.Elements(Kind::kAccessor).size();
    const std::size_t accessor = IndexMember(skin, "inverseBindMatrices", none);
    std::vector<float> binds;
    if (accessor < none && gltf::HasData(document, accessor)) binds = gltf::ReadFloats(document, accessor);
    const auto joints = skin.Find("joints")->Items();
    for (std::size_t i = 0; i < joints.size(); ++i) {
        kernix::NodeModel* joint = loaded.Node(*joints[i].Index());
        if (joint == nullptr) continue;
        M placed;
        placed.IdentityMatrix();
        for (std::size_t k = 0; k < 16 && 16 * i + k < binds.size(); ++k) {
            placed.m[k / 4][k % 4] = double{binds[16 * i + k]};
        }
        placed.Transform(World(*joint));
        bounds.Widen(box, placed);
    }
}

}  // namespace

void Bounds::Widen(const vl::Vector3<double>& point) {
    low = {std::min(low.x, point.x), std::min(low.y, point.y), std::min(low.z, point.z)};
    high = {std::max(high.x, point.x), std::max(high.y, point.y), std::max(high.z, point.z)};
}

void Bounds::Widen(const Bounds& box, const M& m) {
    if (box.IsEmpty()) return;
    for (int corner = 0; corner < 8; ++corner) {
        Widen(m.PointTransform(vl::Vector3<double>{(corner & 1) != 0 ? box.high.x : box.low.x,
                                                   (corner & 2) != 0 ? box.high.y : box.low.y,
                                                   (corner & 4) != 0 ? box.high.z : box.low.z}));
    }
}

Bounds BoundsAtRest(const LoadedScene& loaded) {
    Bounds bounds;
    std::map<std::pair<const float*, std::size_t>, Bounds> boxes;
    const auto nodes = loaded.Document().Elements(Kind::kNode);
    const std::vector<bool> isShown = loaded.Parts().layout.Shown();
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        kernix::NodeModel* node = isShown[i] ? loaded.Node(i) : nullptr;
        auto* mesh = node != nullptr ? dynamic_cast<kernix::MeshModel*>(node->m_pObject) : nullptr;
        if (mesh == nullptr) continue;
        const std::span<const float> vertices = mesh->GetGeometry()->Vertices();
        const auto [known, isNew] = boxes.try_emplace({vertices.data(), vertices.size()});
        if (isNew) known->second = BoxOf(vertices);
        const Json* skin = nodes[i].Find("skin");
        if (skin != nullptr) {
            WidenBySkin(loaded, loaded.Document().Elements(Kind::kSkin)[*skin->Index()], known->second,
                        bounds);
        } else {
            bounds.Widen(known->second, ObjectWorld(*node));
        }
    }
    return bounds;
}

}  // namespace zr
