// SPDX-License-Identifier: MIT
#include "app/operations/compare/scene_pair.h"

#include <algorithm>
#include <map>
#include <string_view>

#include "base/text.h"
#include "gltf/members.h"

namespace zr::compare {

using gltf::Document;
using gltf::Json;
using gltf::Kind;

namespace {

// Pairs elements of a kind by name, equal names in order. Returns the partner of each element of `a`, or
// kNone.
std::vector<std::size_t> PairByName(const Document& a, const Document& b, Kind kind) {
    std::map<std::string_view, std::vector<std::size_t>> byName;
    const auto left = a.Elements(kind), right = b.Elements(kind);
    for (std::size_t j = right.size(); j-- > 0;) byName[gltf::NameOf(right[j])].push_back(j);
    std::vector<std::size_t> partners;
    for (const Json& element : left) {
        const auto found = byName.find(gltf::NameOf(element));
        const bool isThere = found != byName.end() && !found->second.empty();
        partners.push_back(isThere ? found->second.back() : kNone);
        if (isThere) found->second.pop_back();
    }
    return partners;
}

// Paired nodes first, so that both scenes draw them in the same order.
std::vector<std::size_t> NodesInOrder(const NodeMatching& matching, bool isA) {
    std::vector<std::size_t> nodes;
    for (const auto& [a, b] : matching.pairs) nodes.push_back(isA ? a : b);
    const std::vector<std::size_t>& rest = isA ? matching.onlyA : matching.onlyB;
    nodes.insert(nodes.end(), rest.begin(), rest.end());
    return nodes;
}

// The uses of each material. nodeOfA(node): the matching node of the first document, or kNone.
template <typename NodeOfA>
std::vector<Uses> UsesOf(const Document& document, const Drawn& drawn, const NodeOfA& nodeOfA) {
    std::vector<Uses> uses(document.Elements(Kind::kMaterial).size());
    for (const Part& part : drawn.Parts()) {
        const std::size_t node = nodeOfA(part.node);
        if (part.material != kNone && node != kNone) uses[part.material].emplace_back(node, part.primitive);
    }
    for (Uses& each : uses) std::sort(each.begin(), each.end());
    return uses;
}

}  // namespace

ScenePair::ScenePair(const Document& documentA, const Document& documentB)
    : a(documentA),
      b(documentB),
      evaluatorA(a),
      evaluatorB(b),
      nodes(MatchNodes(evaluatorA, evaluatorB)),
      materials(MatchMaterials(a, b)),
      animations(PairByName(a, b, Kind::kAnimation)),
      scenes(PairByName(a, b, Kind::kScene)),
      drawnA(evaluatorA, NodesInOrder(nodes, true)),
      drawnB(evaluatorB, NodesInOrder(nodes, false)),
      materialPairs(PairMaterials(materials.classes, UsesOf(a, drawnA, [](std::size_t node) { return node; }),
                                  UsesOf(b, drawnB, [this](std::size_t node) { return nodes.ofB[node]; }))) {}

void ScenePair::SetRest() {
    evaluatorA.SetRest();
    evaluatorB.SetRest();
}

bool ScenePair::AreSame(Kind kind, std::size_t x, std::size_t y) const {
    switch (kind) {
        case Kind::kNode:
            return nodes.ofA[x] == y;
        case Kind::kMaterial:
            return materials.classes.ofA[x] == materials.classes.ofB[y];
        case Kind::kAnimation:
            return animations[x] == y;
        case Kind::kScene:
            return scenes[x] == y;
        case Kind::kVariant:
            return gltf::NameOf(a.Elements(kind)[x]) == gltf::NameOf(b.Elements(kind)[y]);
        default:
            return true;
    }
}

std::string ScenePair::NodeText(std::size_t node) const {
    return compare::NodeText(a, node);
}

bool Carries(const Json& node, std::string_view what) {
    if (what != "light") return node.Find(what) != nullptr;
    return gltf::FindExtension(node, "KHR_lights_punctual") != nullptr;
}

std::string NodeText(const Document& document, std::size_t node) {
    const std::string_view name = gltf::NameOf(document.Elements(Kind::kNode)[node]);
    return name.empty() ? Join("node ", node) : Join("node \"", name, "\" (/nodes/", node, ")");
}

}  // namespace zr::compare
