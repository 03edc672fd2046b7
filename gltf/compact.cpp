// SPDX-License-Identifier: MIT
#include "gltf/compact.h"

#include <algorithm>
#include <unordered_map>

#include "gltf/accessor.h"
#include "gltf/references.h"

namespace zr::gltf {
namespace {

// The bytes [begin, end) of a buffer.
struct Block {
    std::size_t begin;
    std::size_t end;
};

// What an accessor reads of a view that may shrink.
struct ReadPart {
    Json* object;  // its byteOffset counts from the view's begin
    Block block;   // whole rows of the view
};

// By view, the parts of those that may shrink; every other range of a buffer stays whole.
using PartsOfViews = std::unordered_map<const Json*, std::vector<ReadPart>>;

// Calls visit(Json&, layout, count) for each part of an accessor that names a view.
template <typename Visit>
void ForEachPart(Document& document, std::size_t accessor, Visit visit) {
    Json& json = document.Elements(Kind::kAccessor)[accessor];
    const AccessorInfo info = Describe(document, accessor);
    if (json.Find("bufferView") != nullptr) visit(json, info, info.count);
    Json* sparse = json.Find("sparse");
    if (sparse == nullptr) return;
    const std::size_t count = IndexMember(*sparse, "count");
    Json& indices = *sparse->Find("indices");
    AccessorInfo places;
    places.component = static_cast<Component>(IndexMember(indices, "componentType"));
    visit(indices, places, count);
    visit(*sparse->Find("values"), info, count);
}

// The marked views that only accessors read, in ways that are known.
std::vector<bool> Shrinkable(Document& document, std::vector<bool> views) {
    const ReferenceTable references = ListReferences(document, {Kind::kAccessor, Kind::kBufferView});
    if (references.opaque.kinds.Has(Kind::kBufferView)) return std::vector<bool>(views.size(), false);
    const std::vector<bool>& held = references.held[Ordinal(Kind::kBufferView)];
    for (std::size_t view = 0; view < held.size(); ++view)
        if (held[view]) views[view] = false;
    for (const ReferenceTable::Link& link : references.links) {
        if (link.targetKind != Kind::kBufferView) continue;
        const bool isKnown = link.ownerKind == Kind::kAccessor &&
                             document.Elements(Kind::kAccessor)[link.owner].Find("extensions") == nullptr;
        if (!isKnown) views[link.target] = false;
    }
    for (std::size_t view = 0; view < views.size(); ++view)
        if (document.Elements(Kind::kBufferView)[view].Find("extensions") != nullptr) views[view] = false;
    return views;
}

Block BlockOf(const Json& range) {
    const std::size_t begin = IndexMember(range, "byteOffset");
    return {begin, begin + IndexMember(range, "byteLength")};
}

// What a part reads of its view: whole rows, so that elements stay aligned and no view becomes shorter than
// its stride.
Block RowsOf(const Json& view, const Json& part, const AccessorInfo& info, std::size_t count) {
    const std::size_t stride = IndexMember(view, "byteStride");
    const std::size_t row = stride != 0 ? stride : 4;
    const std::size_t begin = IndexMember(part, "byteOffset");
    const std::size_t end =
        begin + (stride != 0 ? stride : info.ElementSize()) * (count - 1) + info.LastElementSize();
    const Block whole = BlockOf(view);
    return {whole.begin + begin / row * row, std::min(whole.end, whole.begin + (end + row - 1) / row * row)};
}

// The marked views without those that one accessor reads whole, as is common.
std::vector<bool> ReadInParts(Document& document, std::vector<bool> views) {
    for (std::size_t i = 0; i < document.Elements(Kind::kAccessor).size(); ++i) {
        ForEachPart(document, i, [&](Json& part, const AccessorInfo& info, std::size_t count) {
            const std::size_t view = IndexMember(part, "bufferView");
            if (!views[view]) return;
            const Json& json = document.Elements(Kind::kBufferView)[view];
            const Block whole = BlockOf(json), rows = count != 0 ? RowsOf(json, part, info, count) : whole;
            views[view] = rows.begin != whole.begin || rows.end != whole.end;
        });
    }
    return views;
}

// What accessors read of the marked views.
PartsOfViews PartsOf(Document& document, const std::vector<bool>& views) {
    PartsOfViews parts;
    for (std::size_t i = 0; i < document.Elements(Kind::kAccessor).size(); ++i) {
        ForEachPart(document, i, [&](Json& part, const AccessorInfo& info, std::size_t count) {
            const std::size_t view = IndexMember(part, "bufferView");
            if (!views[view]) return;
            const Json& json = document.Elements(Kind::kBufferView)[view];
            parts[&json].push_back({&part, RowsOf(json, part, info, count)});
        });
    }
    return parts;
}

bool HasAny(const std::vector<bool>& views) {
    return std::find(views.begin(), views.end(), true) != views.end();
}

std::span<const ReadPart> PartsOf(const PartsOfViews& parts, const Json& range) {
    if (parts.empty()) return {};
    const auto found = parts.find(&range);
    return found != parts.end() ? std::span<const ReadPart>(found->second) : std::span<const ReadPart>();
}

// The blocks of a buffer that stay, and where each byte of them goes. Every block keeps its offset modulo 4,
// so that elements stay aligned and a second run finds nothing to do.
class Packing {
public:
    // ranges: the objects that name a range of the buffer, views and compressed forms of views.
    Packing(const std::vector<Json*>& ranges, const PartsOfViews& partsOfViews) {
        std::vector<Block> blocks;
        for (const Json* range : ranges) {
            const std::span<const ReadPart> parts = PartsOf(partsOfViews, *range);
            if (parts.empty()) blocks.push_back(BlockOf(*range));
            for (const ReadPart& part : parts) blocks.push_back(part.block);
        }
        std::sort(blocks.begin(), blocks.end(),
                  [](const Block& a, const Block& b) { return a.begin < b.begin; });
        std::vector<Block> merged;
        for (const Block& block : blocks) {
            if (!merged.empty() && block.begin <= merged.back().end)
                merged.back().end = std::max(merged.back().end, block.end);
            else
                merged.push_back(block);
        }
        for (const Block& block : merged) {
            const std::size_t to = m_size + (block.begin - m_size) % 4;
            m_moves.push_back({block.begin, block.end - block.begin, to});
            m_size = to + m_moves.back().size;
        }
    }

    std::size_t Size() const { return m_size; }
    std::span<const Document::BlockMove> Moves() const { return m_moves; }

    std::size_t PlaceOf(std::size_t byte) const {
        const auto after = std::upper_bound(m_moves.begin(), m_moves.end(), byte,
                                            [](std::size_t at, const auto& move) { return at < move.from; });
        const Document::BlockMove& move = *std::prev(after);
        return byte - move.from + move.to;
    }

private:
    std::vector<Document::BlockMove> m_moves;
    std::size_t m_size = 0;
};

void SetIndex(JsonTree& tree, Json& object, std::string_view name, std::size_t value) {
    if (IndexMember(object, name) != value) tree.Member(object, name) = tree.MakeIndex(value);
}

void Move(JsonTree& tree, Json& range, std::span<const ReadPart> parts, const Packing& packing) {
    const Block whole = BlockOf(range);
    Block kept = parts.empty() ? whole : parts.front().block;
    for (const ReadPart& part : parts) {
        kept.begin = std::min(kept.begin, part.block.begin);
        kept.end = std::max(kept.end, part.block.end);
    }
    const std::size_t begin = packing.PlaceOf(kept.begin);
    SetIndex(tree, range, "byteOffset", begin);
    if (parts.empty()) return;
    SetIndex(tree, range, "byteLength", packing.PlaceOf(kept.end - 1) + 1 - begin);
    for (const ReadPart& part : parts) {
        const std::size_t at = whole.begin + IndexMember(*part.object, "byteOffset");
        SetIndex(tree, *part.object, "byteOffset", packing.PlaceOf(at) - begin);
    }
}

std::size_t Compact(Document& document, std::size_t buffer, const std::vector<Json*>& ranges,
                    const PartsOfViews& parts) {
    const auto bytes = document.BufferBytes(buffer);
    if (!bytes) return 0;
    const Packing packing(ranges, parts);
    // Padding to a multiple of 4 after the last block is not worth removing.
    if ((packing.Size() + 3) / 4 >= (bytes->size() + 3) / 4) return 0;
    const std::size_t freed = bytes->size() - packing.Size();
    for (Json* range : ranges) Move(document.Tree(), *range, PartsOf(parts, *range), packing);
    document.PackBuffer(buffer, packing.Moves());
    return freed;
}

}  // namespace

std::size_t CompactBuffers(Document& document, const std::vector<bool>& buffers,
                           const std::vector<bool>& views) {
    PartsOfViews parts;
    const std::vector<bool> inParts = HasAny(views) ? ReadInParts(document, views) : views;
    if (HasAny(inParts)) parts = PartsOf(document, Shrinkable(document, inParts));
    std::vector<std::vector<Json*>> ranges(document.Elements(Kind::kBuffer).size());
    ForEachBufferRange(document,
                       [&](Json& range) { ranges[IndexMember(range, "buffer")].push_back(&range); });
    std::size_t freed = 0;
    for (std::size_t i = 0; i < ranges.size(); ++i)
        if (buffers[i]) freed += Compact(document, i, ranges[i], parts);
    return freed;
}

}  // namespace zr::gltf
