// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "base/text.h"
#include "gltf/accessor.h"
#include "gltf/check.h"
#include "gltf/document.h"
#include "gltf/members.h"

namespace zr::gltf {
namespace {

// Elements without stored data cost the file nothing, so the memory they would take is bounded separately.
constexpr std::uint64_t kUnstoredWeight = 4;
// Keeps all products below 2^64, and is below the largest std::size_t, to which greater numbers are clamped.
constexpr std::uint64_t kMaxCount =
    std::min<std::uint64_t>(std::uint64_t{1} << 40, std::numeric_limits<std::size_t>::max() - 1);

// A place in an element, turned into text only when there is a fault to report.
struct Spot {
    std::string_view collection;
    std::size_t index;
    std::string_view member = "";

    std::string Place(std::string_view below = "") const {
        return Join("/", collection, "/", index, member, below);
    }
};

std::string Range(std::uint64_t offset, std::uint64_t length, std::uint64_t available) {
    return Join("bytes ", offset, " to ", offset + length, " exceed the ", available);
}

class Ranges {
public:
    explicit Ranges(const Document& document) : m_document(document) {}

    void Views() {
        const auto views = m_document.Elements(Kind::kBufferView);
        for (std::size_t i = 0; i < views.size(); ++i) {
            const Spot view{"bufferViews", i};
            InBuffer(views[i], view);
            for (const std::string_view name : kMeshopt)
                if (const Json* compressed = FindExtension(views[i], name))
                    InBuffer(*compressed, {"bufferViews", i, Join("/extensions/", name)});
            if (views[i].Find("byteStride") == nullptr) continue;
            const std::uint64_t stride = IndexMember(views[i], "byteStride");
            if (stride < 4 || stride > 252 || stride % 4 != 0)
                m_document.Fail(ErrorKind::kBounds, view.Place("/byteStride"),
                                Join(stride, " is not a multiple of 4 from 4 to 252"));
        }
    }

    void Accessor(const Json& accessor, std::size_t index) {
        const Spot spot{"accessors", index};
        const std::size_t size = SizeOf(IndexMember(accessor, "componentType"));
        if (size == 0) Fail(spot.Place("/componentType"), "is not a component type");
        if (!ShapeOf(accessor.Find("type")->String())) Fail(spot.Place("/type"), "is not an accessor type");
        const AccessorInfo info = Describe(m_document, index);
        if (info.count > kMaxCount) Limit(spot.Place("/count"));
        const Json* sparse = accessor.Find("sparse");
        const bool isStored = accessor.Find("bufferView") != nullptr;
        if (isStored) InView(accessor, info, info.count, spot);
        // Each accessor is read at most once, however often its bytes are referred to.
        m_decoded += std::uint64_t{info.count} * info.shape.Components() * sizeof(float) *
                     (isStored ? 1 : kUnstoredWeight);
        if (m_decoded > m_document.Budget().Total()) Limit(spot.Place("/count"));
        for (std::string_view bound : {"min", "max"}) {
            const Json* values = accessor.Find(bound);
            if (values != nullptr && values->Items().size() != info.shape.Components())
                Fail(spot.Place(Join("/", bound)),
                     Join("should hold ", Counted(info.shape.Components(), "number")));
        }
        if (sparse != nullptr) Sparse(*sparse, info, {"accessors", index, "/sparse"});
    }

private:
    void InBuffer(const Json& range, const Spot& spot) {
        const std::uint64_t offset = IndexMember(range, "byteOffset"),
                            length = IndexMember(range, "byteLength");
        const Json& buffer = m_document.Elements(Kind::kBuffer)[IndexMember(range, "buffer")];
        const std::uint64_t available = IndexMember(buffer, "byteLength");
        if (offset > available || length > available - offset)
            m_document.Fail(ErrorKind::kBounds, spot.Place(),
                            Join(Range(offset, length, available), " of its buffer"));
    }

    // Checks that `count` elements of the layout `info` fit at the view and offset that `part` names.
    void InView(const Json& part, const AccessorInfo& info, std::uint64_t count, const Spot& spot) {
        const std::uint64_t size = info.ElementSize();
        const Json& view = m_document.Elements(Kind::kBufferView)[IndexMember(part, "bufferView")];
        const std::uint64_t stride = IndexMember(view, "byteStride", size);
        const std::uint64_t offset = IndexMember(part, "byteOffset"),
                            available = IndexMember(view, "byteLength");
        if (stride < size)
            m_document.Fail(ErrorKind::kBounds, spot.Place(),
                            Join("elements of ", size, " bytes with a stride of ", stride));
        if (count > kMaxCount) Limit(spot.Place());
        const std::uint64_t length = count == 0 ? 0 : stride * (count - 1) + info.LastElementSize();
        if (offset > available || length > available - offset)
            m_document.Fail(ErrorKind::kBounds, spot.Place(),
                            Join(Range(offset, length, available), " of its view"));
    }

    void Sparse(const Json& sparse, const AccessorInfo& info, const Spot& spot) {
        const std::size_t count = IndexMember(sparse, "count");
        if (count > info.count)
            m_document.Fail(ErrorKind::kBounds, spot.Place("/count"),
                            Join(count, " sparse values for ", info.count, " elements"));
        const Json& indices = *sparse.Find("indices");
        const std::uint64_t component = IndexMember(indices, "componentType");
        if (component != 5121 && component != 5123 && component != 5125)
            Fail(spot.Place("/indices/componentType"), "is not an unsigned component type");
        const std::size_t size = SizeOf(component);
        const AccessorInfo places{static_cast<Component>(component), {}, count, false};
        InView(indices, places, count, {spot.collection, spot.index, "/sparse/indices"});
        InView(*sparse.Find("values"), info, count, {spot.collection, spot.index, "/sparse/values"});
        const auto bytes = m_document.ViewBytes(IndexMember(indices, "bufferView"));
        if (!bytes) return;
        const std::size_t view = IndexMember(indices, "bufferView");
        const std::size_t stride =
            IndexMember(m_document.Elements(Kind::kBufferView)[view], "byteStride", size);
        std::uint64_t least = 0;
        for (std::size_t i = 0; i < count; ++i) {
            const std::size_t at = IndexMember(indices, "byteOffset") + i * stride;
            std::uint64_t value = 0;
            for (std::size_t k = size; k-- > 0;)
                value = value << 8 | std::to_integer<std::uint64_t>((*bytes)[at + k]);
            if (value >= info.count)
                m_document.Fail(ErrorKind::kBounds, spot.Place("/indices"),
                                Join("index ", value, " of only ", Counted(info.count, "element")));
            if (value < least)
                m_document.Fail(ErrorKind::kBounds, spot.Place("/indices"),
                                Join("index ", value, " is not greater than the one before"));
            least = value + 1;
        }
    }

    [[noreturn]] void Fail(const std::string& place, std::string_view text) {
        m_document.Fail(ErrorKind::kStructure, place, text);
    }
    [[noreturn]] void Limit(const std::string& place) {
        m_document.Fail(ErrorKind::kLimit, place, "more elements than a file of this size may claim");
    }

    const Document& m_document;
    std::uint64_t m_decoded = 0;
};

}  // namespace

void CheckAccessors(const Document& document) {
    Ranges ranges(document);
    ranges.Views();
    const auto accessors = document.Elements(Kind::kAccessor);
    for (std::size_t i = 0; i < accessors.size(); ++i) ranges.Accessor(accessors[i], i);
}

}  // namespace zr::gltf
