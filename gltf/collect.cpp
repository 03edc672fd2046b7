// SPDX-License-Identifier: MIT
#include "gltf/collect.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

#include "gltf/compact.h"

namespace zr::gltf {
namespace {

// Marks everything that is reachable from elements that are not subject to collection.
class Marker {
public:
    Marker(Document& document, KindSet kinds) : m_document(document), m_kinds(kinds) {
        std::uint32_t next = 0;
        for (std::size_t i = 0; i < kKinds; ++i) {
            m_first[i] = next;
            next += static_cast<std::uint32_t>(document.Elements(static_cast<Kind>(i)).size());
        }
        m_reached.resize(next, false);
    }

    void Reach(const ElementSet& elements) {
        for (std::size_t i = 0; i < kKinds; ++i) {
            if (!m_kinds.Has(static_cast<Kind>(i))) continue;
            for (std::size_t k = 0; k < elements[i].size(); ++k)
                if (elements[i][k]) Reach(m_first[i] + static_cast<std::uint32_t>(k));
        }
    }

    Removal Unreached(const ReferenceTable& references) {
        Reach(references.held);
        // The targets of each element that may itself be removed, grouped by that element.
        std::vector<std::uint32_t> begins(m_reached.size() + 1, 0);
        for (const ReferenceTable::Link& link : references.links) {
            if (!m_kinds.Has(link.targetKind)) continue;
            if (m_kinds.Has(link.ownerKind))
                ++begins[Number(link.ownerKind, link.owner)];
            else
                Reach(Number(link.targetKind, link.target));
        }
        std::partial_sum(begins.begin(), begins.end(), begins.begin());
        std::vector<std::uint32_t> targets(begins.back());
        for (const ReferenceTable::Link& link : references.links) {
            if (m_kinds.Has(link.targetKind) && m_kinds.Has(link.ownerKind))
                targets[--begins[Number(link.ownerKind, link.owner)]] = Number(link.targetKind, link.target);
        }
        while (!m_pending.empty()) {
            const std::uint32_t from = m_pending.back();
            m_pending.pop_back();
            for (std::uint32_t i = begins[from]; i < begins[from + 1]; ++i) Reach(targets[i]);
        }
        Removal removal;
        for (std::size_t i = 0; i < kKinds; ++i) {
            const std::size_t count = m_document.Elements(static_cast<Kind>(i)).size();
            if (!m_kinds.Has(static_cast<Kind>(i))) continue;
            for (std::size_t k = 0; k < count; ++k) removal[i].push_back(!m_reached[m_first[i] + k]);
        }
        return removal;
    }

private:
    std::uint32_t Number(Kind kind, std::uint32_t index) const { return m_first[Ordinal(kind)] + index; }

    void Reach(std::uint32_t element) {
        if (m_reached[element]) return;
        m_reached[element] = true;
        m_pending.push_back(element);
    }

    Document& m_document;
    KindSet m_kinds;
    std::array<std::uint32_t, kKinds> m_first{};
    std::vector<bool> m_reached;
    std::vector<std::uint32_t> m_pending;
};

// Returns whether there were any.
bool DropUnusedSamplers(Document& document) {
    bool dropped = false;
    for (Json& animation : document.Elements(Kind::kAnimation)) {
        Json* samplers = animation.Find("samplers");
        Json* channels = animation.Find("channels");
        if (samplers == nullptr || channels == nullptr) continue;
        std::vector<bool> used(samplers->Items().size(), false);
        for (const Json& channel : channels->Items()) used[IndexMember(channel, "sampler")] = true;
        if (std::find(used.begin(), used.end(), false) == used.end()) continue;
        std::vector<std::size_t> renumbered(used.size());
        std::size_t next = 0;
        for (std::size_t i = 0; i < used.size(); ++i) renumbered[i] = used[i] ? next++ : 0;
        for (Json& channel : channels->Items()) {
            Json& sampler = *channel.Find("sampler");
            sampler = document.Tree().MakeIndex(renumbered[*sampler.Index()]);
        }
        std::size_t i = 0;
        samplers->FilterItems([&](const Json&) { return used[i++]; });
        dropped = true;
    }
    return dropped;
}

// The views that lose an accessor, and the buffers that lose a part of one or a view.
struct Losing {
    std::vector<bool> views;
    std::vector<bool> buffers;
};

Losing LosingData(const Document& document, const Removal& removal) {
    const auto views = document.Elements(Kind::kBufferView);
    Losing losing;
    losing.views.resize(views.size(), false);
    losing.buffers.resize(document.Elements(Kind::kBuffer).size(), false);
    const auto lose = [&](const Json* part) {
        const Json* view = part != nullptr ? part->Find("bufferView") : nullptr;
        if (view != nullptr) losing.views[*view->Index()] = true;
    };
    const std::vector<bool>& goneAccessors = removal[Ordinal(Kind::kAccessor)];
    for (std::size_t i = 0; i < goneAccessors.size(); ++i) {
        if (!goneAccessors[i]) continue;
        const Json& accessor = document.Elements(Kind::kAccessor)[i];
        lose(&accessor);
        if (const Json* sparse = accessor.Find("sparse")) {
            lose(sparse->Find("indices"));
            lose(sparse->Find("values"));
        }
    }
    const std::vector<bool>& goneViews = removal[Ordinal(Kind::kBufferView)];
    for (std::size_t view = 0; view < views.size(); ++view) {
        if (losing.views[view] || (view < goneViews.size() && goneViews[view]))
            losing.buffers[IndexMember(views[view], "buffer")] = true;
    }
    return losing;
}

// Removes the items that `gone` marks.
void Erase(std::vector<bool>& items, const std::vector<bool>& gone) {
    std::vector<bool> left;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (i >= gone.size() || !gone[i]) left.push_back(items[i]);
    items = std::move(left);
}

// `spared`: null when nothing is spared.
Collected Collect(Document& document, KindSet kinds, bool force, const Removal* spared) {
    Collected collected;
    const KindSet asked = kinds;
    ReferenceTable references = ListReferences(document, kinds);
    if (!force) {
        for (OpaqueUse& use : references.opaque.uses) {
            kinds.Remove(use.kinds);
            if (asked.HasAny(use.kinds)) collected.refusals.push_back(std::move(use));
        }
    }
    if (kinds.Has(Kind::kAccessor) && DropUnusedSamplers(document))
        references = ListReferences(document, kinds);
    Marker marker(document, kinds);
    if (spared != nullptr) marker.Reach(*spared);
    const Removal removal = marker.Unreached(references);
    for (std::size_t i = 0; i < kKinds; ++i) {
        collected.removed[i] =
            static_cast<std::size_t>(std::count(removal[i].begin(), removal[i].end(), true));
        if (static_cast<Kind>(i) != Kind::kBuffer) continue;
        for (std::size_t k = 0; k < removal[i].size(); ++k)
            if (removal[i][k]) collected.bytes += document.BufferBytes(k).value_or(Bytes()).size();
    }
    Losing losing = LosingData(document, removal);
    if (spared == nullptr) {
        losing.views.assign(losing.views.size(), kinds.Has(Kind::kBufferView));
        losing.buffers.assign(losing.buffers.size(), true);
    }
    Erase(losing.views, removal[Ordinal(Kind::kBufferView)]);
    Erase(losing.buffers, removal[Ordinal(Kind::kBuffer)]);
    references = {};
    RemoveElements(document, removal);
    if (kinds.Has(Kind::kBuffer)) collected.bytes += CompactBuffers(document, losing.buffers, losing.views);
    return collected;
}

}  // namespace

Removal Unreferenced(Document& document, KindSet kinds) {
    return Marker(document, kinds).Unreached(ListReferences(document, kinds));
}

Collected CollectGarbage(Document& document, KindSet kinds, bool force) {
    return Collect(document, kinds, force, nullptr);
}

Collected CollectGarbage(Document& document, KindSet kinds, bool force, const Removal& spared) {
    return Collect(document, kinds, force, &spared);
}

}  // namespace zr::gltf
