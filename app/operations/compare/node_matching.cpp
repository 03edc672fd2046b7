// SPDX-License-Identifier: MIT
#include "app/operations/compare/node_matching.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <map>
#include <string>

#include "app/operations/compare/canonical.h"
#include "gltf/accessor.h"
#include "gltf/members.h"

namespace zr::compare {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

using Digest = std::size_t;

Digest Mixed(Digest a, Digest b) {
    return (a ^ (b + 0x9e3779b97f4a7c15 + (a << 6) + (a >> 2))) * 0xff51afd7ed558ccd;
}

// Hashes that tell nodes of the same name apart. They do not depend on the order of elements, vertices and
// children; different content rarely has equal digests.
class Digests {
public:
    explicit Digests(const Evaluator& evaluator)
        : m_document(evaluator.Document()),
          m_canonical(m_document, Names::kCount),
          m_children(evaluator.Nodes()),
          m_own(evaluator.Nodes()),
          m_whole(evaluator.Nodes()) {
        for (std::size_t node = 0; node < evaluator.Nodes(); ++node) {
            if (evaluator.Parent(node) != kNone) m_children[evaluator.Parent(node)].push_back(node);
            m_own[node] = OfNode(evaluator, node);
        }
        for (const Animation& animation : evaluator.Animations())
            for (const Channel& channel : animation.channels)
                if (channel.path != Path::kPointer) m_own[channel.node] += OfChannel(animation, channel);
        const std::vector<std::size_t>& order = evaluator.ParentsFirst();
        for (auto node = order.rbegin(); node != order.rend(); ++node) {
            Digest below = 0;
            for (const std::size_t child : m_children[*node])
                below += Mixed(m_whole[child], NameDigest(child));
            m_whole[*node] = Mixed(m_own[*node], below);
        }
    }

    std::string_view Name(std::size_t node) const {
        return gltf::NameOf(m_document.Elements(Kind::kNode)[node]);
    }
    const std::vector<std::size_t>& Children(std::size_t node) const { return m_children[node]; }
    Digest Own(std::size_t node) const { return m_own[node]; }      // of the node without its name
    Digest Whole(std::size_t node) const { return m_whole[node]; }  // including its descendants

private:
    Digest NameDigest(std::size_t node) const { return std::hash<std::string_view>()(Name(node)); }

    Digest OfNode(const Evaluator& evaluator, std::size_t node) {
        const Json& json = m_document.Elements(Kind::kNode)[node];
        Digest digest = 1;
        // Rounded: a matrix and its decomposition differ in the last bits.
        const Affine& world = evaluator.World(node);
        for (const double part :
             {world.origin.x, world.origin.y, world.origin.z, world.x.x, world.y.y, world.z.z})
            digest = Mixed(digest, static_cast<Digest>(std::llround(std::clamp(part, -1e12, 1e12) * 1000)));
        if (json.Find("mesh") != nullptr) digest = Mixed(digest, OfMesh(IndexMember(json, "mesh")));
        if (json.Find("camera") != nullptr)
            digest = Mixed(digest, TextDigest(m_canonical.Of(Kind::kCamera, IndexMember(json, "camera"))));
        if (json.Find("skin") != nullptr) digest = Mixed(digest, 7);
        if (const Json* extensions = json.Find("extensions"))
            for (const gltf::JsonMember& extension : extensions->Members())
                digest += std::hash<std::string_view>()(extension.Name());
        return digest;
    }

    Digest OfMesh(std::size_t mesh) {
        const auto [known, isNew] = m_meshes.try_emplace(mesh, 0);
        if (!isNew) return known->second;
        Digest digest = 0;
        for (const Json& primitive : m_document.Elements(Kind::kMesh)[mesh].Find("primitives")->Items()) {
            Digest part = IndexMember(primitive, "mode", 4);
            if (primitive.Find("material") != nullptr)
                part = Mixed(part,
                             TextDigest(m_canonical.Of(Kind::kMaterial, IndexMember(primitive, "material"))));
            if (const Json* positions = primitive.Find("attributes")->Find("POSITION"))
                part = Mixed(part, OfPositions(*positions->Index()));
            digest += part;
        }
        return m_meshes[mesh] = digest;
    }

    Digest OfPositions(std::size_t accessor) {
        const auto [known, isNew] = m_positions.try_emplace(accessor, 0);
        if (!isNew || !gltf::HasData(m_document, accessor)) return known->second;
        const std::vector<float> values = gltf::ReadFloats(m_document, accessor);
        Digest sum = 0;
        for (std::size_t i = 0; i + 2 < values.size(); i += 3)
            sum +=
                Mixed(Mixed(FloatDigest(values[i]), FloatDigest(values[i + 1])), FloatDigest(values[i + 2]));
        return known->second = sum;
    }

    static Digest OfChannel(const Animation& animation, const Channel& channel) {
        Digest digest = Mixed(std::hash<std::string>()(animation.name), static_cast<Digest>(channel.path));
        std::vector<double> value(channel.curve.Width());
        for (const double at : {0.0, 0.37, 1.0}) {
            channel.curve.At(animation.start + at * (animation.end - animation.start), false, value);
            for (const double part : value)
                digest =
                    Mixed(digest, static_cast<Digest>(std::llround(std::clamp(part, -1e12, 1e12) * 1000)));
        }
        return digest;
    }

    static Digest FloatDigest(float value) { return std::hash<float>()(value); }
    static Digest TextDigest(const std::string& text) { return std::hash<std::string>()(text); }

    const gltf::Document& m_document;
    Canonical m_canonical;
    std::vector<std::vector<std::size_t>> m_children;
    std::vector<Digest> m_own;
    std::vector<Digest> m_whole;
    std::map<std::size_t, Digest> m_meshes;
    std::map<std::size_t, Digest> m_positions;
};

using Nodes = std::vector<std::size_t>;

class NodeMatcher {
public:
    NodeMatcher(const Evaluator& a, const Evaluator& b) : m_a(a), m_b(b), m_digestsA(a), m_digestsB(b) {
        m_result.ofA.assign(a.Nodes(), kNone);
        m_result.ofB.assign(b.Nodes(), kNone);
    }

    NodeMatching Run() {
        MatchRoots(true);
        MatchMoved();
        MatchRoots(false);
        for (std::size_t node = 0; node < m_a.Nodes(); ++node)
            if (m_a.Shown()[node] && m_result.ofA[node] == kNone) m_result.onlyA.push_back(node);
        for (std::size_t node = 0; node < m_b.Nodes(); ++node)
            if (m_b.Shown()[node] && m_result.ofB[node] == kNone) m_result.onlyB.push_back(node);
        return std::move(m_result);
    }

private:
    void MatchRoots(bool shown) {
        const auto roots = [shown](const Evaluator& evaluator) {
            Nodes nodes;
            for (std::size_t node = 0; node < evaluator.Nodes(); ++node)
                if (evaluator.Parent(node) == kNone && evaluator.Shown()[node] == shown)
                    nodes.push_back(node);
            return nodes;
        };
        const std::size_t from = m_result.pairs.size();
        Match(roots(m_a), roots(m_b));
        MatchBelow(from);
    }

    void MatchBelow(std::size_t from) {
        for (std::size_t i = from; i < m_result.pairs.size(); ++i) {
            const auto [a, b] = m_result.pairs[i];
            Match(m_digestsA.Children(a), m_digestsB.Children(b));
        }
    }

    void Match(Nodes a, Nodes b) {
        const auto free = [](Nodes& nodes, const Nodes& partners) {
            std::erase_if(nodes, [&](std::size_t node) { return partners[node] != kNone; });
        };
        using Key = std::pair<std::string_view, Digest>;
        const auto stage = [&](auto key) {
            free(a, m_result.ofA);
            free(b, m_result.ofB);
            if (a.empty() || b.empty()) return;
            // Nodes with equal keys are paired in order.
            std::map<Key, std::pair<Nodes, std::size_t>> byKey;
            for (const std::size_t node : b) byKey[key(m_digestsB, node)].first.push_back(node);
            for (const std::size_t node : a) {
                const auto found = byKey.find(key(m_digestsA, node));
                if (found == byKey.end()) continue;
                auto& [nodes, next] = found->second;
                if (next < nodes.size()) Pair(node, nodes[next++]);
            }
        };
        stage([](const Digests& d, std::size_t n) { return Key(d.Name(n), d.Whole(n)); });
        stage([](const Digests& d, std::size_t n) { return Key(d.Name(n), d.Own(n)); });
        stage([](const Digests& d, std::size_t n) { return Key(d.Name(n), 0); });
        stage([](const Digests& d, std::size_t n) { return Key({}, d.Whole(n)); });
        stage([](const Digests& d, std::size_t n) { return Key({}, d.Own(n)); });
    }

    void Pair(std::size_t a, std::size_t b) {
        m_result.ofA[a] = b;
        m_result.ofB[b] = a;
        m_result.pairs.emplace_back(a, b);
    }

    void MatchMoved() {
        const auto byName = [](const Evaluator& evaluator, const Digests& digests, const Nodes& partners) {
            std::map<std::string_view, Nodes> nodes;
            for (const std::size_t node : evaluator.ParentsFirst())
                if (evaluator.Shown()[node] && partners[node] == kNone && !digests.Name(node).empty())
                    nodes[digests.Name(node)].push_back(node);
            return nodes;
        };
        const auto a = byName(m_a, m_digestsA, m_result.ofA), b = byName(m_b, m_digestsB, m_result.ofB);
        for (const auto& [name, nodes] : a) {
            const auto other = b.find(name);
            if (nodes.size() != 1 || other == b.end() || other->second.size() != 1) continue;
            if (m_result.ofA[nodes[0]] != kNone || m_result.ofB[other->second[0]] != kNone) continue;
            const std::size_t from = m_result.pairs.size();
            Pair(nodes[0], other->second[0]);
            m_result.moved.push_back(m_result.pairs.back());
            MatchBelow(from);
        }
    }

    const Evaluator& m_a;
    const Evaluator& m_b;
    Digests m_digestsA, m_digestsB;
    NodeMatching m_result;
};

}  // namespace

NodeMatching MatchNodes(const Evaluator& a, const Evaluator& b) {
    return NodeMatcher(a, b).Run();
}

}  // namespace zr::compare
