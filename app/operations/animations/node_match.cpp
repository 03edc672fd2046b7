// SPDX-License-Identifier: MIT
#include "app/operations/animations/node_match.h"

#include <algorithm>
#include <map>
#include <stdexcept>
#include <tuple>

#include "base/error.h"
#include "base/file.h"
#include "base/text.h"
#include "gltf/json.h"

namespace zr {
namespace {

using kernix::NodeModel;

constexpr std::uint64_t kMaxPairsSize = 64 << 20;  // bytes; the file may be an endless pipe or device

using NodePlace =
    std::tuple<const NodeModel*, std::string, int>;  // parent, name, rank among siblings of that name

// Calls visit(node) for every node, parents first.
template <typename Visit>
void ForEachNode(kernix::SceneModel& scene, Visit visit) {
    for (vl::zr::Node* node : vl::ArrayOf<vl::zr::Node*>(scene.m_pNodes))
        visit(static_cast<NodeModel*>(node));
}

// Calls visit(node, rank).
template <typename Visit>
void ForEachPlace(kernix::SceneModel& scene, Visit visit) {
    std::map<std::pair<const NodeModel*, std::string>, int> counts;
    ForEachNode(scene, [&](NodeModel* node) {
        visit(node, counts[{node->GetParent(), node->GetNameText()}]++);
    });
}

// Nodes by name or by path; null if several share it.
using Named = std::unordered_map<std::string, NodeModel*>;

void Add(Named& named, const std::string& name, NodeModel* node) {
    const auto [at, isNew] = named.try_emplace(name, node);
    if (!isNew) at->second = nullptr;
}

Named NodesByName(kernix::SceneModel& scene) {
    Named named;
    ForEachNode(scene, [&](NodeModel* node) { Add(named, node->GetNameText(), node); });
    return named;
}

// The node with a name or, if it starts with "/", at a path from the root.
NodeModel* Lookup(const Named& names, const Named& paths, const std::string& wanted, const char* scene) {
    const Named& named = wanted.starts_with('/') ? paths : names;
    const auto found = named.find(wanted);
    if (found == named.end())
        throw std::runtime_error(Join("no node of ", scene, " is named \"", wanted, "\""));
    if (found->second == nullptr)
        throw std::runtime_error(Join("several nodes of ", scene, " are named \"", wanted, "\""));
    return found->second;
}

}  // namespace

NodePartners MatchByPath(kernix::SceneModel& from, kernix::SceneModel& to) {
    std::map<NodePlace, NodeModel*> places;
    ForEachPlace(to, [&](NodeModel* node, int rank) {
        places[{node->GetParent(), node->GetNameText(), rank}] = node;
    });
    NodePartners partners;
    ForEachPlace(from, [&](NodeModel* node, int rank) {
        const NodeModel* parent = nullptr;
        if (node->GetParent() != nullptr) {
            const auto known = partners.find(node->GetParent());
            if (known == partners.end()) return;
            parent = known->second;
        }
        const auto found = places.find({parent, node->GetNameText(), rank});
        if (found != places.end()) partners[node] = found->second;
    });
    return partners;
}

NodePartners MatchByName(kernix::SceneModel& from, kernix::SceneModel& to) {
    const Named targets = NodesByName(to);
    NodePartners partners;
    for (const auto& [name, node] : NodesByName(from)) {
        const auto found = targets.find(name);
        if (node != nullptr && !name.empty() && found != targets.end() && found->second != nullptr)
            partners[node] = found->second;
    }
    return partners;
}

NodePartners MatchByPairs(kernix::SceneModel& from, kernix::SceneModel& to, const NodePairs& pairs) {
    const auto lookup = [&pairs](kernix::SceneModel& scene, const char* name, auto wanted) {
        const Named names = NodesByName(scene);
        // The length of paths grows with the depth of the scene, so they are built only on demand.
        Named paths;
        if (std::any_of(pairs.begin(), pairs.end(),
                        [&](const auto& pair) { return wanted(pair).starts_with('/'); }))
            ForEachNode(scene, [&](NodeModel* node) { Add(paths, NodePath(*node), node); });
        std::vector<NodeModel*> nodes;
        for (const auto& pair : pairs) nodes.push_back(Lookup(names, paths, wanted(pair), name));
        return nodes;
    };
    const auto sources = lookup(from, "the other scene", [](const auto& pair) { return pair.first; });
    const auto targets = lookup(to, "the scene", [](const auto& pair) { return pair.second; });
    NodePartners partners;
    for (std::size_t i = 0; i < pairs.size(); ++i) partners[sources[i]] = targets[i];
    return partners;
}

NodePairs ReadNodePairs(const std::filesystem::path& file) {
    const std::string name = PathToUtf8(file);
    FileContent content = ReadFile(file, kMaxPairsSize);
    gltf::JsonTree tree;
    tree.Parse(reinterpret_cast<char*>(content.data.get()), content.size, name);
    if (!tree.root.IsObject()) throw Error(name, "", "is not a JSON object of node names");
    NodePairs pairs;
    for (const auto& member : tree.root.Members()) {
        if (!member.value.IsString()) throw Error(name, Join("/", member.Name()), "is not a string");
        pairs.emplace_back(member.Name(), member.value.String());
    }
    return pairs;
}

std::string NodePath(const NodeModel& node) {
    std::vector<const NodeModel*> up;
    for (const NodeModel* at = &node; at != nullptr; at = at->GetParent()) up.push_back(at);
    std::string path;
    for (auto at = up.rbegin(); at != up.rend(); ++at) path += "/" + (*at)->GetNameText();
    return path;
}

}  // namespace zr
