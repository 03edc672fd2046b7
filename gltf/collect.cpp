// SPDX-License-Identifier: MIT
#include "gltf/collect.h"

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>

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

// The bytes [begin, end) covered by ranges.
struct Block {
    std::size_t begin;
    std::size_t end;
};

// Packs the bytes of a buffer that ranges cover. Every block keeps its offset modulo 4, so that elements stay
// aligned and a second run finds nothing to do. Returns the number of bytes removed.
std::size_t Compact(Document& document, std::size_t buffer, std::vector<Json*>& ranges) {
    const auto bytes = document.BufferBytes(buffer);
    if (!bytes) return 0;
    std::vector<Block> blocks;
    for (const Json* range : ranges) {
        const std::size_t begin = IndexMember(*range, "byteOffset");
        blocks.push_back({begin, begin + IndexMember(*range, "byteLength")});
    }
    std::sort(blocks.begin(), blocks.end(), [](const Block& a, const Block& b) { return a.begin < b.begin; });
    std::vector<Block> merged;
    for (const Block& block : blocks) {
        if (!merged.empty() && block.begin <= merged.back().end)
            merged.back().end = std::max(merged.back().end, block.end);
        else
            merged.push_back(block);
    }
    std::vector<Document::BlockMove> moves;
    std::size_t size = 0;
    for (const Block& block : merged) {
        const std::size_t to = size + (block.begin - size) % 4;
        moves.push_back({block.begin, block.end - block.begin, to});
        size = to + moves.back().size;
    }
    // Padding to a multiple of 4 after the last block is not worth removing.
    if ((size + 3) / 4 >= (bytes->size() + 3) / 4) return 0;

    for (Json* range : ranges) {
        const std::size_t begin = IndexMember(*range, "byteOffset");
        const auto after = std::upper_bound(moves.begin(), moves.end(), begin,
                                            [](std::size_t at, const auto& move) { return at < move.from; });
        const Document::BlockMove& move = *std::prev(after);
        const std::size_t moved = begin - move.from + move.to;
        if (moved != begin) document.Tree().Member(*range, "byteOffset") = document.Tree().MakeIndex(moved);
    }
    const std::size_t freed = bytes->size() - size;
    document.PackBuffer(buffer, moves);
    return freed;
}

// The buffers that lose a view.
std::vector<bool> LosingBuffers(const Document& document, const Removal& removal) {
    const std::vector<bool>& gone = removal[Ordinal(Kind::kBufferView)];
    std::vector<bool> losing(document.Elements(Kind::kBuffer).size(), false);
    for (std::size_t view = 0; view < gone.size(); ++view)
        if (gone[view]) losing[IndexMember(document.Elements(Kind::kBufferView)[view], "buffer")] = true;
    return losing;
}

// Removes the items that `gone` marks.
void Erase(std::vector<bool>& items, const std::vector<bool>& gone) {
    std::vector<bool> left;
    for (std::size_t i = 0; i < items.size(); ++i)
        if (i >= gone.size() || !gone[i]) left.push_back(items[i]);
    items = std::move(left);
}

std::size_t CompactBuffers(Document& document, const std::vector<bool>& chosen) {
    std::vector<std::vector<Json*>> ranges(document.Elements(Kind::kBuffer).size());
    ForEachBufferRange(document,
                       [&](Json& range) { ranges[IndexMember(range, "buffer")].push_back(&range); });
    std::size_t freed = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i)
        if (chosen[i]) freed += Compact(document, i, ranges[i]);
    return freed;
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
    std::vector<bool> compacted = spared != nullptr
                                      ? LosingBuffers(document, removal)
                                      : std::vector<bool>(document.Elements(Kind::kBuffer).size(), true);
    Erase(compacted, removal[Ordinal(Kind::kBuffer)]);
    RemoveElements(document, removal);
    if (kinds.Has(Kind::kBuffer)) collected.bytes += CompactBuffers(document, compacted);
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
