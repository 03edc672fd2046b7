// SPDX-License-Identifier: MIT
#include <string>
#include <vector>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/document.h"

namespace zr::gltf {
namespace {

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

std::string NodePlace(std::size_t node) {
    return Join("/nodes/", node);
}

std::vector<std::size_t> Parents(const Document& document) {
    const auto nodes = document.Elements(Kind::kNode);
    std::vector<std::size_t> parents(nodes.size(), kNone);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        const Json* children = nodes[i].Find("children");
        if (children == nullptr) continue;
        for (const Json& item : children->Items()) {
            const std::size_t child = *item.Index();
            if (child == i)
                document.Fail(ErrorKind::kHierarchy, Join(NodePlace(i), "/children"),
                              "the node is its own child");
            if (parents[child] != kNone)
                document.Fail(ErrorKind::kHierarchy, Join(NodePlace(i), "/children"),
                              Join("node ", child, " is already a child of node ", parents[child]));
            parents[child] = i;
        }
    }
    return parents;
}

// The root above each node. A node that is its own ancestor is a fault.
std::vector<std::size_t> Roots(const Document& document, const std::vector<std::size_t>& parents) {
    std::vector<std::size_t> roots(parents.size(), kNone);
    std::vector<bool> onPath(parents.size(), false);
    std::vector<std::size_t> path;
    for (std::size_t i = 0; i < parents.size(); ++i) {
        path.clear();
        std::size_t at = i;
        while (roots[at] == kNone && parents[at] != kNone) {
            if (onPath[at])
                document.Fail(ErrorKind::kHierarchy, Join(NodePlace(at), "/children"),
                              "the node is its own descendant");
            onPath[at] = true;
            path.push_back(at);
            at = parents[at];
        }
        const std::size_t root = roots[at] == kNone ? at : roots[at];
        roots[at] = root;
        for (std::size_t node : path) {
            roots[node] = root;
            onPath[node] = false;
        }
    }
    return roots;
}

void CheckScenes(const Document& document, const std::vector<std::size_t>& parents) {
    const auto scenes = document.Elements(Kind::kScene);
    std::vector<std::size_t> listedIn(parents.size(), kNone);
    for (std::size_t i = 0; i < scenes.size(); ++i) {
        const Json* nodes = scenes[i].Find("nodes");
        if (nodes == nullptr) continue;
        for (const Json& item : nodes->Items()) {
            const std::size_t node = *item.Index();
            const std::string place = Join("/scenes/", i, "/nodes");
            if (parents[node] != kNone)
                document.Fail(ErrorKind::kHierarchy, place, Join("node ", node, " is not a root"));
            if (listedIn[node] == i)
                document.Fail(ErrorKind::kHierarchy, place, Join("node ", node, " is listed twice"));
            listedIn[node] = i;
        }
    }
}

void CheckTransforms(const Document& document) {
    const auto nodes = document.Elements(Kind::kNode);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i].Find("matrix") == nullptr) continue;
        for (std::string_view part : {"translation", "rotation", "scale"})
            if (nodes[i].Find(part) != nullptr)
                document.Fail(ErrorKind::kHierarchy, NodePlace(i), Join("has both a matrix and a ", part));
    }
}

void CheckSkins(const Document& document, const std::vector<std::size_t>& roots) {
    const auto skins = document.Elements(Kind::kSkin);
    for (std::size_t i = 0; i < skins.size(); ++i) {
        const std::string place = Join("/skins/", i);
        const auto joints = skins[i].Find("joints")->Items();
        for (const Json& joint : joints)
            if (roots[*joint.Index()] != roots[*joints[0].Index()])
                document.Fail(ErrorKind::kHierarchy, Join(place, "/joints"),
                              "the joints have no common root");
        if (skins[i].Find("inverseBindMatrices") == nullptr) continue;
        const AccessorInfo info = Describe(document, IndexMember(skins[i], "inverseBindMatrices"));
        if (info.component != Component::kFloat || info.shape.Components() != 16 ||
            info.count < joints.size())
            document.Fail(ErrorKind::kHierarchy, Join(place, "/inverseBindMatrices"),
                          Join("must hold a matrix of floats for each joint, ", joints.size(), " in all"));
    }
}

}  // namespace

void CheckHierarchy(const Document& document) {
    const std::vector<std::size_t> parents = Parents(document);
    const std::vector<std::size_t> roots = Roots(document, parents);
    CheckScenes(document, parents);
    CheckTransforms(document);
    CheckSkins(document, roots);
}

}  // namespace zr::gltf
