// SPDX-License-Identifier: MIT
#include "app/scene/node_layout.h"

#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "gltf/members.h"

namespace zr {

using gltf::IndexMember;
using gltf::Json;
using gltf::Kind;

namespace {

constexpr std::size_t kNone = NodeLayout::kNone;

std::span<const Json> ItemsOf(const Json& holder, std::string_view name) {
    const Json* list = holder.Find(name);
    return list != nullptr ? list->Items() : std::span<const Json>();
}

std::span<const Json> LevelsOf(const Json& node) {
    const Json* levels = gltf::FindExtension(node, "MSFT_lod");
    return levels != nullptr ? ItemsOf(*levels, "ids") : std::span<const Json>();
}

class Planner {
public:
    explicit Planner(const gltf::Document& document) : m_nodes(document.Elements(Kind::kNode)) {
        m_layout.parents.assign(m_nodes.size(), kNone);
        m_layout.standsFor.assign(m_nodes.size(), kNone);
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            for (const Json& child : ItemsOf(m_nodes[i], "children")) m_layout.parents[*child.Index()] = i;
        for (const Json& scene : document.Elements(Kind::kScene)) {
            std::vector<std::size_t>& roots = m_layout.scenes.emplace_back();
            for (const Json& root : ItemsOf(scene, "nodes")) roots.push_back(*root.Index());
        }
        m_layout.shown = IndexMember(document.Root(), "scene");
    }

    NodeLayout DefaultScene() && {
        if (m_layout.scenes.empty()) m_layout.scenes.push_back(Roots());
        for (std::size_t i = 0; i < m_layout.scenes.size(); ++i)
            if (i != m_layout.shown) m_layout.scenes[i].clear();
        Visit(m_layout.scenes[m_layout.shown]);
        return std::move(m_layout);
    }

    NodeLayout Whole() && {
        m_layout.isWhole = true;
        AttachLevels();
        if (m_layout.scenes.empty()) m_layout.scenes.push_back(Roots());
        Visit(AllRoots());
        return std::move(m_layout);
    }

    std::vector<std::size_t> AllRoots() {
        std::vector<bool> isListed(m_nodes.size(), false);
        std::vector<std::size_t> all;
        const auto add = [&](const std::vector<std::size_t>& roots) {
            for (const std::size_t root : roots) {
                if (!isListed[root]) all.push_back(root);
                isListed[root] = true;
            }
        };
        if (!m_layout.scenes.empty()) add(m_layout.scenes[m_layout.shown]);
        for (const auto& roots : m_layout.scenes) add(roots);
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            if (m_layout.parents[i] == kNone) add({i});
        return all;
    }

private:
    std::vector<std::size_t> Roots() const {
        std::vector<std::size_t> roots;
        for (std::size_t i = 0; i < m_nodes.size(); ++i)
            if (m_layout.parents[i] == kNone && m_layout.standsFor[i] == kNone) roots.push_back(i);
        return roots;
    }

    // Attaches the levels of detail outside of every scene. One that several nodes share stands for the
    // first.
    void AttachLevels() {
        std::vector<bool> isInScene(m_nodes.size(), false);
        for (const auto& roots : m_layout.scenes)
            for (const std::size_t root : roots) isInScene[root] = true;
        std::vector<std::size_t> bases = m_layout.standsFor;
        std::vector<std::size_t> levels;
        for (std::size_t i = 0; i < m_nodes.size(); ++i) {
            for (const Json& item : LevelsOf(m_nodes[i])) {
                const std::size_t id = *item.Index();
                const bool isFree = m_layout.parents[id] == kNone && m_layout.standsFor[id] == kNone;
                if (!isFree || isInScene[id] || Last(bases, i) == id) continue;
                m_layout.standsFor[id] = bases[id] = i;
                levels.push_back(id);
            }
        }
        std::vector<std::size_t> above = m_layout.parents;
        for (const std::size_t level : levels) {
            const std::size_t base = m_layout.standsFor[level] = Last(bases, level);
            const std::size_t parent = m_layout.parents[base];
            // A level above the node that it stands for would become its own ancestor.
            if (parent == kNone || Last(above, parent) == level) continue;
            m_layout.parents[level] = above[level] = parent;
            m_attached[parent].push_back(level);
        }
    }

    // The node at the end of a chain of links. Compresses the chain.
    static std::size_t Last(std::vector<std::size_t>& links, std::size_t node) {
        std::size_t last = node;
        while (links[last] != kNone) last = links[last];
        while (node != last) node = std::exchange(links[node], last);
        return last;
    }

    // In pre-order.
    void Visit(const std::vector<std::size_t>& roots) {
        std::vector<std::size_t> open(roots.rbegin(), roots.rend());
        while (!open.empty()) {
            const std::size_t node = open.back();
            open.pop_back();
            m_layout.order.push_back(node);
            if (const auto attached = m_attached.find(node); attached != m_attached.end())
                open.insert(open.end(), attached->second.rbegin(), attached->second.rend());
            const auto children = ItemsOf(m_nodes[node], "children");
            for (std::size_t i = children.size(); i-- > 0;) open.push_back(*children[i].Index());
        }
    }

    std::span<const Json> m_nodes;
    std::unordered_map<std::size_t, std::vector<std::size_t>> m_attached;  // levels by parent
    NodeLayout m_layout;
};

}  // namespace

std::size_t NodeLayout::BaseOf(std::size_t node) const {
    return standsFor[node] != kNone ? standsFor[node] : node;
}

std::vector<bool> NodeLayout::Shown() const {
    std::vector<bool> isShown(parents.size(), false);
    for (const std::size_t root : scenes[shown]) isShown[root] = true;
    for (const std::size_t node : order)
        if (parents[node] != kNone && standsFor[node] == kNone && isShown[parents[node]])
            isShown[node] = true;
    return isShown;
}

NodeLayout LayOut(const gltf::Document& document, bool whole) {
    Planner planner(document);
    return whole ? std::move(planner).Whole() : std::move(planner).DefaultScene();
}

std::vector<std::size_t> AllRoots(const gltf::Document& document) {
    return Planner(document).AllRoots();
}

}  // namespace zr
