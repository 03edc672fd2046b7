// SPDX-License-Identifier: MIT
#include "app/operations/compare/compare_scenes.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

#include "app/operations/compare/content.h"
#include "app/operations/compare/material_classes.h"
#include "app/operations/compare/material_pairs.h"
#include "app/operations/compare/node_matching.h"
#include "app/operations/compare/track_comparison.h"
#include "base/text.h"
#include "gltf/members.h"
#include "gltf/walk.h"

namespace zr::compare {

using gltf::Document;
using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

// How much is evaluated over time: transforms of nodes, and corners of faces.
constexpr std::size_t kMostTransforms = 20'000'000;
constexpr std::size_t kMostFaces = 6'000'000;
constexpr std::size_t kFewTimes = 64;  // of an animation, where its keys are too many
// The default tolerance, of the scene's size: what rounding to floats leaves along a hierarchy.
constexpr double kRelativeTolerance = 1e-6;

bool Carries(const Json& node, std::string_view what) {
    if (what != "light") return node.Find(what) != nullptr;
    return gltf::FindExtension(node, "KHR_lights_punctual") != nullptr;
}

// Elements of a kind by name, equal names in order; kNone for those without a partner.
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

// Numbers from 0 to 1 that depend on nothing but their place.
double Scattered(std::size_t seed, std::size_t which) {
    std::uint64_t x = (seed * 16 + which + 1) * 0x9e3779b97f4a7c15ULL;
    x = (x ^ (x >> 31)) * 0xbf58476d1ce4e5b9ULL;
    return static_cast<double>((x ^ (x >> 29)) >> 11) / 9007199254740992.0;
}

class Comparison {
public:
    Comparison(const Document& a, const Document& b, const CompareOptions& options)
        : m_a(a),
          m_b(b),
          m_options(options),
          m_evaluatorA(a),
          m_evaluatorB(b),
          m_nodes(MatchNodes(m_evaluatorA, m_evaluatorB)),
          m_materials(MatchMaterials(a, b)),
          m_animations(PairByName(a, b, Kind::kAnimation)),
          m_scenes(PairByName(a, b, Kind::kScene)),
          m_drawnA(m_evaluatorA, InOrder(true)),
          m_drawnB(m_evaluatorB, InOrder(false)),
          m_materialPairs(PairMaterials(m_materials.classes, UsesOf(m_drawnA), UsesOf(m_drawnB))),
          m_content(
              a, b, options.tolerance.value,
              [this](Kind kind, std::size_t i, std::size_t j) { return AreSame(kind, i, j); },
              [this](const std::string& where, const std::string& what, double) {
                  Structure(Join(where, ": ", what));
              }) {
        m_result.compared = options.aspects;
        m_result.tolerance = options.tolerance;
        m_result.size = Size();
        if (m_result.tolerance.length == 0)
            m_result.tolerance.length = kRelativeTolerance * (m_result.size > 0 ? m_result.size : 1);
    }

    CompareResult Run() {
        // Also finds the elements that pointers lead to, which the comparison of values needs.
        CompareStructure();
        m_options.progress(0.1);
        if (Wants(Aspect::kDrawn)) CompareShapes();
        m_options.progress(0.2);
        CompareMotion();
        ListUnread();
        Judge();
        m_options.progress(1);
        return std::move(m_result);
    }

private:
    bool Wants(Aspect aspect) const { return m_options.aspects[static_cast<std::size_t>(aspect)]; }
    void Structure(std::string line) { m_result.structure.push_back(std::move(line)); }

    // Pairs first, so that what both scenes draw is in the same order.
    std::vector<std::size_t> InOrder(bool isA) const {
        std::vector<std::size_t> nodes;
        for (const auto& [a, b] : m_nodes.pairs) nodes.push_back(isA ? a : b);
        const std::vector<std::size_t>& rest = isA ? m_nodes.onlyA : m_nodes.onlyB;
        nodes.insert(nodes.end(), rest.begin(), rest.end());
        return nodes;
    }

    // By material, where pairs of nodes draw it; nodes are told by their numbers in the first document.
    std::vector<Uses> UsesOf(const Drawn& drawn) const {
        const bool isA = &drawn == &m_drawnA;
        std::vector<Uses> uses((isA ? m_a : m_b).Elements(Kind::kMaterial).size());
        for (const Part& part : drawn.Parts()) {
            const std::size_t node = isA ? part.node : m_nodes.ofB[part.node];
            if (part.material != kNone && node != kNone)
                uses[part.material].emplace_back(node, part.primitive);
        }
        for (Uses& each : uses) std::sort(each.begin(), each.end());
        return uses;
    }

    bool AreSame(Kind kind, std::size_t a, std::size_t b) const {
        switch (kind) {
            case Kind::kNode:
                return m_nodes.ofA[a] == b;
            case Kind::kMaterial:
                return m_materials.classes.ofA[a] == m_materials.classes.ofB[b];
            case Kind::kAnimation:
                return m_animations[a] == b;
            case Kind::kScene:
                return m_scenes[a] == b;
            case Kind::kVariant:
                return gltf::NameOf(m_a.Elements(kind)[a]) == gltf::NameOf(m_b.Elements(kind)[b]);
            default:
                return true;
        }
    }

    std::string NodeText(const Document& document, std::size_t node) const {
        const std::string_view name = gltf::NameOf(document.Elements(Kind::kNode)[node]);
        return name.empty() ? Join("node ", node) : Join("node \"", name, "\" (/nodes/", node, ")");
    }
    std::string NodeText(std::size_t node) const { return NodeText(m_a, node); }

    double Size() {
        Vec3 low{HUGE_VAL, HUGE_VAL, HUGE_VAL}, high{-HUGE_VAL, -HUGE_VAL, -HUGE_VAL};
        const auto widen = [&](Vec3 p) {
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        };
        for (std::size_t node = 0; node < m_evaluatorA.Nodes(); ++node)
            if (m_evaluatorA.Shown()[node]) widen(m_evaluatorA.World(node).origin);
        for (const Part& part : m_drawnA.Parts()) {
            const std::vector<double> vertices = m_drawnA.Vertices(part);
            const std::size_t stride = part.shape->Stride();
            for (std::size_t i = 0; stride > 0 && i < vertices.size(); i += stride)
                widen({vertices[i], vertices[i + 1], vertices[i + 2]});
        }
        if (!(low.x <= high.x)) return 0;
        // Far from the origin, coordinates are only as exact as their magnitude allows.
        const double size = std::max({Length(high - low), Length(high), Length(low)});
        return std::isfinite(size) ? size : 0;
    }

    // ---- Structure.

    void CompareStructure() {
        for (const std::size_t node : m_nodes.onlyA)
            Structure(NodeText(m_a, node) + " is only in the first scene");
        for (const std::size_t node : m_nodes.onlyB)
            Structure(NodeText(m_b, node) + " is only in the second scene");
        for (const auto& [a, b] : m_nodes.moved) Structure(NodeText(a) + " has another parent");
        for (const auto& [a, b] : m_nodes.pairs) CompareNodes(a, b);
        for (const auto& [a, b] : m_materials.different) m_content.Elements(Kind::kMaterial, a, b);
        CompareCollections("animation", Kind::kAnimation, m_animations);
        for (std::size_t i = 0; i < m_animations.size(); ++i)
            if (m_animations[i] != kNone) CompareRanges(i, m_animations[i]);
        CompareCollections("scene", Kind::kScene, m_scenes);
        CompareScenesListed();
        CompareRoots();
    }

    void CompareNodes(std::size_t a, std::size_t b) {
        const Json& left = m_a.Elements(Kind::kNode)[a];
        const Json& right = m_b.Elements(Kind::kNode)[b];
        for (const char* what : {"mesh", "skin", "camera", "light"}) {
            if (Carries(left, what) == Carries(right, what)) continue;
            Structure(Join(NodeText(a), " carries a ", what, " in the ",
                           Carries(left, what) ? "first" : "second", " scene only"));
        }
        m_content.Elements(Kind::kNode, a, b);
        if (Carries(left, "camera") && Carries(right, "camera"))
            m_content.Elements(Kind::kCamera, IndexMember(left, "camera"), IndexMember(right, "camera"));
        if (Carries(left, "mesh") && Carries(right, "mesh"))
            CompareMeshes(IndexMember(left, "mesh"), IndexMember(right, "mesh"));
    }

    void CompareMeshes(std::size_t a, std::size_t b) {
        if (!m_meshes.emplace(a, b).second) return;
        m_content.Elements(Kind::kMesh, a, b);
        // What primitives hold beyond what they draw, where it is known which belong together.
        const auto primitives = [](const Document& document, std::size_t mesh,
                                   const std::vector<std::size_t>& classes) {
            std::vector<const Json*> list;
            for (const Json& primitive : document.Elements(Kind::kMesh)[mesh].Find("primitives")->Items())
                list.push_back(&primitive);
            const auto materialClass = [&](const Json* primitive) {
                const std::size_t material = IndexMember(*primitive, "material", kNone);
                return material == kNone ? kNone : classes[material];
            };
            std::stable_sort(list.begin(), list.end(), [&](const Json* x, const Json* y) {
                return materialClass(x) < materialClass(y);
            });
            return list;
        };
        const auto left = primitives(m_a, a, m_materials.classes.ofA);
        const auto right = primitives(m_b, b, m_materials.classes.ofB);
        if (left.size() != right.size()) return;
        for (std::size_t i = 0; i < left.size(); ++i) {
            const std::string place = Join("/meshes/", a, "/primitives/", i);
            m_content.Values(left[i]->Find("extras"), right[i]->Find("extras"), nullptr, place + "/extras");
            const auto variants = [](const Json& primitive) {
                return gltf::FindExtension(primitive, "KHR_materials_variants");
            };
            const gltf::SchemaNode* schema =
                gltf::Schema().Find("meshes")->item->Find("primitives")->item.get();
            schema = schema->Find("extensions")->Find("KHR_materials_variants");
            m_content.Values(variants(*left[i]), variants(*right[i]), schema,
                             place + "/extensions/KHR_materials_variants");
        }
    }

    void CompareCollections(std::string_view noun, Kind kind, const std::vector<std::size_t>& partners) {
        std::vector<bool> taken(m_b.Elements(kind).size(), false);
        for (std::size_t i = 0; i < partners.size(); ++i) {
            if (partners[i] == kNone) {
                Structure(
                    Join(noun, " \"", gltf::NameOf(m_a.Elements(kind)[i]), "\" is only in the first scene"));
                continue;
            }
            taken[partners[i]] = true;
            if (kind == Kind::kAnimation) m_content.Elements(kind, i, partners[i]);
        }
        for (std::size_t j = 0; j < taken.size(); ++j)
            if (!taken[j])
                Structure(
                    Join(noun, " \"", gltf::NameOf(m_b.Elements(kind)[j]), "\" is only in the second scene"));
    }

    void CompareRanges(std::size_t a, std::size_t b) {
        const Animation& x = m_evaluatorA.Animations()[a];
        const Animation& y = m_evaluatorB.Animations()[b];
        const double limit = m_options.tolerance.value * std::max(1.0, std::abs(x.end));
        if (std::abs(x.start - y.start) <= limit && std::abs(x.end - y.end) <= limit) return;
        char text[128];
        std::snprintf(text, sizeof text, "\" plays from %g to %g s and from %g to %g s", x.start, x.end,
                      y.start, y.end);
        Structure(Join("animation \"", x.name, text));
    }

    void CompareScenesListed() {
        const std::size_t a = IndexMember(m_a.Root(), "scene", kNone),
                          b = IndexMember(m_b.Root(), "scene", kNone);
        const auto shown = [](const Document& document, std::size_t scene) {
            return scene == kNone && !document.Elements(Kind::kScene).empty() ? 0 : scene;
        };
        const std::size_t shownA = shown(m_a, a), shownB = shown(m_b, b);
        if ((shownA == kNone) != (shownB == kNone) || (shownA != kNone && m_scenes[shownA] != shownB))
            Structure("/scene: another scene is shown by default");
        for (std::size_t i = 0; i < m_scenes.size(); ++i) {
            if (m_scenes[i] == kNone) continue;
            std::set<std::size_t> rootsB;
            const auto roots = [](const Document& document, std::size_t scene) {
                const Json* nodes = document.Elements(Kind::kScene)[scene].Find("nodes");
                return nodes != nullptr ? nodes->Items() : std::span<const Json>();
            };
            for (const Json& root : roots(m_b, m_scenes[i])) rootsB.insert(*root.Index());
            for (const Json& root : roots(m_a, i)) {
                const std::size_t partner = m_nodes.ofA[*root.Index()];
                if (partner != kNone && rootsB.erase(partner) == 0)
                    Structure(
                        Join(NodeText(*root.Index()), " is in /scenes/", i, " in the first scene only"));
            }
            for (const std::size_t root : rootsB)
                if (m_nodes.ofB[root] != kNone)
                    Structure(Join(NodeText(m_b, root), " is in /scenes/", m_scenes[i],
                                   " in the second scene only"));
        }
    }

    void CompareRoots() {
        m_content.Values(m_a.Root().Find("extras"), m_b.Root().Find("extras"), nullptr, "/extras");
        const Json* a = m_a.Root().Find("extensions");
        const Json* b = m_b.Root().Find("extensions");
        std::set<std::string_view> names;
        for (const Json* extensions : {a, b})
            if (extensions != nullptr)
                for (const gltf::JsonMember& member : extensions->Members()) names.insert(member.Name());
        for (std::string_view name : names) {
            // Lights are compared where nodes carry them; metadata packets are referred to by number.
            if (name == "KHR_lights_punctual" || name == "KHR_materials_variants") continue;
            m_content.Values(a != nullptr ? a->Find(name) : nullptr, b != nullptr ? b->Find(name) : nullptr,
                             gltf::Schema().Find("extensions")->Find(name), Join("/extensions/", name));
        }
    }

    // ---- What is drawn.

    void CompareShapes() {
        CompareDrawnAs("at rest");
        // Joints, weights of vertices and morph targets show only when something moves them.
        if (!m_nodes.IsComplete()) return;
        for (const bool isA : {true, false}) {
            Evaluator& evaluator = isA ? m_evaluatorA : m_evaluatorB;
            std::vector<std::size_t> pairOf(evaluator.Nodes(), kNone);
            for (std::size_t i = 0; i < m_nodes.pairs.size(); ++i)
                pairOf[isA ? m_nodes.pairs[i].first : m_nodes.pairs[i].second] = i;
            evaluator.ChangeLocals([&](std::size_t node, const Affine& local) {
                return pairOf[node] == kNone ? local : local * Probe(pairOf[node]);
            });
            for (std::size_t node = 0; node < pairOf.size(); ++node) {
                std::vector<double> weights = evaluator.Weights(node);
                for (std::size_t i = 0; i < weights.size(); ++i) weights[i] = Scattered(pairOf[node], 8 + i);
                if (!weights.empty() && pairOf[node] != kNone) evaluator.SetWeights(node, std::move(weights));
            }
        }
        if (m_result.drawn.empty()) CompareDrawnAs("with every joint and morph target moved");
        m_evaluatorA.SetRest();
        m_evaluatorB.SetRest();
    }

    static Affine Probe(std::size_t pair) {
        Trs turn;
        for (std::size_t i = 0; i < 3; ++i) turn.rotation[i] = 0.4 * (Scattered(pair, i) - 0.5);
        return turn.Matrix();
    }

    void CompareDrawnAs(std::string_view pose) {
        const DrawnDifference difference =
            CompareDrawn(m_drawnA, m_drawnB, m_materials.classes, m_result.tolerance);
        m_result.faces = std::max(m_result.faces, difference.faces);
        m_result.point.Note(
            difference.length, [&] { return difference.node == kNone ? "" : NodeText(difference.node); }, "",
            0);
        char amounts[96];
        std::snprintf(amounts, sizeof amounts, "; up to %.3g off, directions %.3g, other values %.3g",
                      difference.length, difference.angle, difference.value);
        if (difference.changed > 0)
            m_result.drawn.push_back(Join(difference.changed, " faces differ ", pose, ", first of ",
                                          NodeText(difference.changedNode), amounts));
        if (difference.onlyA > 0)
            m_result.drawn.push_back(Join(difference.onlyA, " faces are drawn by the first scene only ", pose,
                                          ", first of ", NodeText(m_a, difference.onlyANode)));
        if (difference.onlyB > 0)
            m_result.drawn.push_back(Join(difference.onlyB, " faces are drawn by the second scene only ",
                                          pose, ", first of ", NodeText(m_b, difference.onlyBNode)));
    }

    // ---- Motion.

    void CompareMotion() {
        ComparePlaces("", 0);
        std::size_t pairs = 0;
        for (const std::size_t partner : m_animations) pairs += partner != kNone;
        if (pairs == 0) return;
        const std::size_t nodes = m_evaluatorA.Nodes() + m_evaluatorB.Nodes() + 1;
        const std::size_t faces = m_drawnA.Faces() + m_drawnB.Faces() + 1;
        const std::size_t times = std::max<std::size_t>(kMostTransforms / nodes / pairs, 4);
        const std::size_t shapes = std::max<std::size_t>(kMostFaces / faces / pairs, 1);
        std::size_t done = 0;
        for (std::size_t i = 0; i < m_animations.size(); ++i) {
            if (m_animations[i] == kNone) continue;
            m_evaluatorA.SetRest();
            m_evaluatorB.SetRest();
            CompareAnimation(i, m_animations[i], times, shapes);
            m_options.progress(0.2 + 0.8 * static_cast<double>(++done) / static_cast<double>(pairs));
        }
        m_evaluatorA.SetRest();
        m_evaluatorB.SetRest();
    }

    void CompareAnimation(std::size_t a, std::size_t b, std::size_t times, std::size_t shapes) {
        const Animation& x = m_evaluatorA.Animations()[a];
        TrackComparison tracks(m_evaluatorA, m_evaluatorB, m_result.tolerance);
        tracks.Run(
            x, m_evaluatorB.Animations()[b], [this](const Channel& channel) { return GoalOfA(channel); },
            [this](const Channel& channel) { return GoalOfB(channel); },
            [&](const Goal& goal, double amount, double time) {
                m_result.value.Note(
                    amount, [&] { return goal.Place(); }, x.name, time);
            });
        for (const double time : tracks.Times(times, kFewTimes)) {
            m_evaluatorA.SetTime(a, time);
            m_evaluatorB.SetTime(b, time);
            ComparePlaces(x.name, time);
            ++m_result.times;
        }
        if (!Wants(Aspect::kPoints)) return;
        for (const double time : tracks.Times(shapes, kFewTimes / 4)) {
            m_evaluatorA.SetTime(a, time);
            m_evaluatorB.SetTime(b, time);
            const DrawnDifference difference =
                CompareDrawn(m_drawnA, m_drawnB, m_materials.classes, m_result.tolerance);
            m_result.movedPoint.Note(
                difference.length, [&] { return difference.node == kNone ? "" : NodeText(difference.node); },
                x.name, time);
        }
    }

    std::optional<Goal> GoalOfA(const Channel& channel) const {
        Goal goal{channel.path, channel.node, kNone, channel.pointer, {}};
        if (channel.path == Path::kPointer) {
            const auto pointer = Translated(channel.pointer, true);
            if (!pointer) return std::nullopt;
            goal.pointerB = *pointer;
        } else if ((goal.nodeB = m_nodes.ofA[channel.node]) == kNone) {
            return std::nullopt;
        }
        return goal;
    }

    std::optional<Goal> GoalOfB(const Channel& channel) const {
        Goal goal{channel.path, kNone, channel.node, {}, channel.pointer};
        if (channel.path == Path::kPointer) {
            const auto pointer = Translated(channel.pointer, false);
            if (!pointer) return std::nullopt;
            goal.pointerA = *pointer;
        } else if ((goal.nodeA = m_nodes.ofB[channel.node]) == kNone) {
            return std::nullopt;
        }
        return goal;
    }

    std::optional<std::string> Translated(const std::string& pointer, bool fromA) const {
        const auto target = gltf::PointerTarget(pointer);
        if (!target) return pointer;
        const std::size_t count = (fromA ? m_a : m_b).Elements(target->kind).size();
        if (target->index >= count) return std::nullopt;
        const std::size_t partner = Partner(target->kind, target->index, fromA);
        if (partner == kNone) return std::nullopt;
        return std::string(pointer).replace(target->textOffset, target->textSize, std::to_string(partner));
    }

    std::size_t Partner(Kind kind, std::size_t index, bool fromA) const {
        if (kind == Kind::kNode) return fromA ? m_nodes.ofA[index] : m_nodes.ofB[index];
        if (kind != Kind::kMaterial)
            return fromA ? m_content.PartnerInB(kind, index) : m_content.PartnerInA(kind, index);
        return (fromA ? m_materialPairs.ofA : m_materialPairs.ofB)[index];
    }

    void ComparePlaces(std::string_view animation, double time) {
        for (const auto& [a, b] : m_nodes.pairs) {
            const Affine& x = m_evaluatorA.World(a);
            const Affine& y = m_evaluatorB.World(b);
            const auto place = [&, node = a] { return NodeText(node); };
            m_result.node.Note(Finite(Length(x.origin - y.origin)), place, animation, time);
            for (const auto& [u, v] : {std::pair(x.x, y.x), std::pair(x.y, y.y), std::pair(x.z, y.z)}) {
                const double size = std::max({Length(u), Length(v), 1e-6});
                m_result.axis.Note(Finite(Length(u - v) / size), place, animation, time);
            }
            const Json& json = m_a.Elements(Kind::kNode)[a];
            if (!Carries(json, "camera") && !Carries(json, "light")) continue;
            const double chord = Length(Unit(x.z) - Unit(y.z));
            m_result.view.Note(Finite(2 * std::asin(std::min(chord / 2, 1.0))), place, animation, time);
        }
    }

    static double Finite(double difference) { return std::isnan(difference) ? HUGE_VAL : difference; }

    // ---- The result.

    void ListUnread() {
        std::set<std::string> places;
        for (const Drawn* drawn : {&m_drawnA, &m_drawnB})
            for (const std::string& place : drawn->Unread())
                places.insert(Join(drawn == &m_drawnA ? "first" : "second", " scene, ", place));
        for (const Evaluator* evaluator : {&m_evaluatorA, &m_evaluatorB})
            for (const Animation& animation : evaluator->Animations())
                for (const std::string& place : animation.unread)
                    places.insert(Join(evaluator == &m_evaluatorA ? "first" : "second", " scene, ", place));
        m_result.unread.assign(places.begin(), places.end());
    }

    void Judge() {
        const Tolerance& limit = m_result.tolerance;
        const auto set = [&](Aspect aspect, bool same) {
            m_result.same[static_cast<std::size_t>(aspect)] = same || !Wants(aspect);
        };
        set(Aspect::kStructure, m_result.structure.empty());
        set(Aspect::kDrawn, m_result.drawn.empty());
        set(Aspect::kNodes, m_result.node.amount <= limit.length && m_result.axis.amount <= limit.angle);
        set(Aspect::kPoints, m_result.movedPoint.amount <= limit.length);
        set(Aspect::kViews, m_result.view.amount <= limit.angle);
        set(Aspect::kValues, m_result.value.amount <= limit.value);
    }

    const Document& m_a;
    const Document& m_b;
    const CompareOptions& m_options;
    Evaluator m_evaluatorA, m_evaluatorB;
    const NodeMatching m_nodes;
    const MaterialMatching m_materials;
    const std::vector<std::size_t> m_animations, m_scenes;
    const Drawn m_drawnA, m_drawnB;
    const MaterialPairs m_materialPairs;
    ContentComparison m_content;
    std::set<std::pair<std::size_t, std::size_t>> m_meshes;
    CompareResult m_result;
};

}  // namespace

void Greatest::Note(double other, const std::function<std::string()>& place, std::string_view newAnimation,
                    double newTime) {
    if (!(other > amount)) return;
    amount = other;
    where = place();
    animation = newAnimation;
    time = newTime;
}

bool CompareResult::IsSame() const {
    return std::all_of(same.begin(), same.end(), [](bool each) { return each; });
}

CompareResult CompareScenes(const Document& a, const Document& b, const CompareOptions& options) {
    return Comparison(a, b, options).Run();
}

}  // namespace zr::compare
