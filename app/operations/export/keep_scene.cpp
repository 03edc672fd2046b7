// SPDX-License-Identifier: MIT
#include "app/operations/export/keep_scene.h"

#include <utility>
#include <vector>

#include "app/scene/refuse_opaque.h"
#include "base/text.h"
#include "gltf/collect.h"
#include "gltf/references.h"

namespace zr {

using gltf::Kind;

namespace {

// Elements used by nodes, directly or through other elements.
constexpr gltf::KindSet kContent{Kind::kMesh,       Kind::kCamera, Kind::kLight,   Kind::kMaterial,
                                 Kind::kTexture,    Kind::kImage,  Kind::kSampler, Kind::kAccessor,
                                 Kind::kBufferView, Kind::kBuffer};

// Finds the nodes and skins that a scene needs. A node needs the whole tree that contains it.
class Reach {
public:
    explicit Reach(gltf::Document& document)
        : m_nodes(document.Elements(Kind::kNode).size()),
          m_links(m_nodes + document.Elements(Kind::kSkin).size()),
          m_reached(m_links.size(), false) {
        gltf::ForEachReference(document, gltf::KindSet::All(),
                               [this](const gltf::Reference& reference) { Note(reference); });
    }

    void Add(Kind kind, std::size_t index) {
        m_open.push_back(Number(kind, index));
        while (!m_open.empty()) {
            const std::size_t element = m_open.back();
            m_open.pop_back();
            if (m_reached[element]) continue;
            m_reached[element] = true;
            m_open.insert(m_open.end(), m_links[element].begin(), m_links[element].end());
        }
    }

    void AddFromDocument() {
        for (const auto& [kind, index] : std::exchange(m_fromDocument, {})) Add(kind, index);
    }

    std::vector<bool> Missed(Kind kind) const {
        std::vector<bool> missed;
        const std::size_t end = kind == Kind::kNode ? m_nodes : m_reached.size();
        for (std::size_t i = Number(kind, 0); i < end; ++i) missed.push_back(!m_reached[i]);
        return missed;
    }

private:
    static bool IsEither(Kind kind) { return kind == Kind::kNode || kind == Kind::kSkin; }
    std::size_t Number(Kind kind, std::size_t index) const {
        return kind == Kind::kNode ? index : m_nodes + index;
    }

    void Note(const gltf::Reference& reference) {
        const gltf::Target& target = reference.target;
        if (!IsEither(target.kind)) return;
        const auto steps = reference.place.Steps();
        if (!reference.owner) {
            // The host's own lists do not make elements needed.
            if (steps[2].member != "ZR_scene") m_fromDocument.emplace_back(target.kind, target.index);
            return;
        }
        if (!IsEither(reference.owner->kind)) return;
        const std::size_t to = Number(target.kind, target.index);
        const std::size_t from = Number(reference.owner->kind, reference.owner->index);
        m_links[from].push_back(to);
        // Below the root, the collection and the element.
        if (steps[3].member == "children") m_links[to].push_back(from);
    }

    std::size_t m_nodes;
    std::vector<std::vector<std::size_t>> m_links;  // of nodes, then of skins
    std::vector<bool> m_reached;
    std::vector<std::size_t> m_open;
    std::vector<std::pair<Kind, std::size_t>> m_fromDocument;
};

}  // namespace

void KeepScene(gltf::Document& document, std::size_t scene, bool force) {
    const auto scenes = document.Elements(Kind::kScene);
    if (scene >= scenes.size())
        document.Fail(gltf::ErrorKind::kReference, "/scenes", Join("there is no scene ", scene));
    Reach reach(document);
    if (const gltf::Json* roots = scenes[scene].Find("nodes"))
        for (const gltf::Json& root : roots->Items()) reach.Add(Kind::kNode, *root.Index());
    reach.AddFromDocument();

    gltf::Removal removal;
    removal[gltf::Ordinal(Kind::kScene)].assign(scenes.size(), true);
    removal[gltf::Ordinal(Kind::kScene)][scene] = false;
    removal[gltf::Ordinal(Kind::kNode)] = reach.Missed(Kind::kNode);
    removal[gltf::Ordinal(Kind::kSkin)] = reach.Missed(Kind::kSkin);
    if (KindsOf(removal).Empty()) return;
    if (!force) RefuseOpaque(document, KindsOf(removal));
    gltf::RemoveElements(document, removal);
    document.Tree().Member(document.Root(), "scene") = document.Tree().MakeIndex(0);
    gltf::CollectGarbage(document, kContent, force);
}

}  // namespace zr
