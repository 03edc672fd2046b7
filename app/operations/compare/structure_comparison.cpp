// SPDX-License-Identifier: MIT
#include "app/operations/compare/structure_comparison.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <span>
#include <string_view>
#include <utility>

#include "base/text.h"
#include "gltf/members.h"
#include "gltf/schema.h"

namespace zr::compare {

using gltf::Document;
using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

class StructureComparison {
public:
    StructureComparison(const ScenePair& pair, double tolerance, ContentComparison& content,
                        std::vector<std::string>& lines)
        : m_pair(pair), m_tolerance(tolerance), m_content(content), m_lines(lines) {}

    void Run() {
        for (const std::size_t node : m_pair.nodes.onlyA)
            Add(NodeText(m_pair.a, node) + " is only in the first scene");
        for (const std::size_t node : m_pair.nodes.onlyB)
            Add(NodeText(m_pair.b, node) + " is only in the second scene");
        for (const auto& [a, b] : m_pair.nodes.moved) Add(m_pair.NodeText(a) + " has a different parent");
        for (const auto& [a, b] : m_pair.nodes.pairs) CompareNodes(a, b);
        for (const auto& [a, b] : m_pair.materials.different) m_content.Elements(Kind::kMaterial, a, b);
        CompareCollections("animation", Kind::kAnimation, m_pair.animations);
        for (std::size_t i = 0; i < m_pair.animations.size(); ++i)
            if (m_pair.animations[i] != kNone) CompareRanges(i, m_pair.animations[i]);
        CompareCollections("scene", Kind::kScene, m_pair.scenes);
        CompareScenesListed();
        CompareRoots();
    }

private:
    void Add(std::string_view line) { m_lines.emplace_back(line); }

    void CompareNodes(std::size_t a, std::size_t b) {
        const Json& left = m_pair.a.Elements(Kind::kNode)[a];
        const Json& right = m_pair.b.Elements(Kind::kNode)[b];
        for (const char* what : {"mesh", "skin", "camera", "light"}) {
            if (Carries(left, what) == Carries(right, what)) continue;
            Add(Join(m_pair.NodeText(a), " has a ", what, " only in the ",
                     Carries(left, what) ? "first" : "second", " scene"));
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
        // Compares what primitives have apart from what they draw; materials decide which primitives
        // correspond.
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
        const auto left = primitives(m_pair.a, a, m_pair.materials.classes.ofA);
        const auto right = primitives(m_pair.b, b, m_pair.materials.classes.ofB);
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
        std::vector<bool> taken(m_pair.b.Elements(kind).size(), false);
        for (std::size_t i = 0; i < partners.size(); ++i) {
            if (partners[i] == kNone) {
                Add(Join(noun, " \"", gltf::NameOf(m_pair.a.Elements(kind)[i]),
                         "\" is only in the first scene"));
                continue;
            }
            taken[partners[i]] = true;
            if (kind == Kind::kAnimation) m_content.Elements(kind, i, partners[i]);
        }
        for (std::size_t j = 0; j < taken.size(); ++j)
            if (!taken[j])
                Add(Join(noun, " \"", gltf::NameOf(m_pair.b.Elements(kind)[j]),
                         "\" is only in the second scene"));
    }

    void CompareRanges(std::size_t a, std::size_t b) {
        const Animation& x = m_pair.evaluatorA.Animations()[a];
        const Animation& y = m_pair.evaluatorB.Animations()[b];
        const double limit = m_tolerance * std::max(1.0, std::abs(x.end));
        if (std::abs(x.start - y.start) <= limit && std::abs(x.end - y.end) <= limit) return;
        Add(Join("animation \"", x.name, "\" plays from ", Short(x.start), " to ", Short(x.end),
                 " s and from ", Short(y.start), " to ", Short(y.end), " s"));
    }

    void CompareScenesListed() {
        const std::size_t a = IndexMember(m_pair.a.Root(), "scene", kNone),
                          b = IndexMember(m_pair.b.Root(), "scene", kNone);
        const auto shown = [](const Document& document, std::size_t scene) {
            return scene == kNone && !document.Elements(Kind::kScene).empty() ? 0 : scene;
        };
        const std::size_t shownA = shown(m_pair.a, a), shownB = shown(m_pair.b, b);
        if ((shownA == kNone) != (shownB == kNone) || (shownA != kNone && m_pair.scenes[shownA] != shownB))
            Add("/scene: a different scene is shown by default");
        for (std::size_t i = 0; i < m_pair.scenes.size(); ++i) {
            if (m_pair.scenes[i] == kNone) continue;
            std::set<std::size_t> rootsB;
            const auto roots = [](const Document& document, std::size_t scene) {
                const Json* nodes = document.Elements(Kind::kScene)[scene].Find("nodes");
                return nodes != nullptr ? nodes->Items() : std::span<const Json>();
            };
            for (const Json& root : roots(m_pair.b, m_pair.scenes[i])) rootsB.insert(*root.Index());
            for (const Json& root : roots(m_pair.a, i)) {
                const std::size_t partner = m_pair.nodes.ofA[*root.Index()];
                if (partner != kNone && rootsB.erase(partner) == 0)
                    Add(Join(m_pair.NodeText(*root.Index()), " is in /scenes/", i,
                             " only in the first scene"));
            }
            for (const std::size_t root : rootsB)
                if (m_pair.nodes.ofB[root] != kNone)
                    Add(Join(NodeText(m_pair.b, root), " is in /scenes/", m_pair.scenes[i],
                             " only in the second scene"));
        }
    }

    void CompareRoots() {
        m_content.Values(m_pair.a.Root().Find("extras"), m_pair.b.Root().Find("extras"), nullptr, "/extras");
        const Json* a = m_pair.a.Root().Find("extensions");
        const Json* b = m_pair.b.Root().Find("extensions");
        std::set<std::string_view> names;
        for (const Json* extensions : {a, b})
            if (extensions != nullptr)
                for (const gltf::JsonMember& member : extensions->Members()) names.insert(member.Name());
        for (std::string_view name : names) {
            // Lights and variants are compared where nodes and primitives refer to them.
            if (name == "KHR_lights_punctual" || name == "KHR_materials_variants") continue;
            m_content.Values(a != nullptr ? a->Find(name) : nullptr, b != nullptr ? b->Find(name) : nullptr,
                             gltf::Schema().Find("extensions")->Find(name), Join("/extensions/", name));
        }
    }

    const ScenePair& m_pair;
    const double m_tolerance;
    ContentComparison& m_content;
    std::vector<std::string>& m_lines;
    std::set<std::pair<std::size_t, std::size_t>> m_meshes;
};

}  // namespace

void CompareStructure(const ScenePair& pair, double valueTolerance, ContentComparison& content,
                      std::vector<std::string>& lines) {
    StructureComparison(pair, valueTolerance, content, lines).Run();
}

}  // namespace zr::compare
