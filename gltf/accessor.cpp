// SPDX-License-Identifier: MIT
#include "gltf/accessor.h"
#include "base/text.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace zr::gltf {
namespace {

// Where the elements of an accessor (or the values of its sparse part) are stored.
struct Source {
    Bytes bytes;
    std::size_t offset = 0;
    std::size_t stride = 0;
};

[[noreturn]] void FailWithoutData(const Document& document, std::size_t accessor) {
    document.Fail(ErrorKind::kBounds, Join("/accessors/", accessor, "/bufferView"),
                  "the data is not stored, or only in compressed form");
}

Source Locate(const Document& document, std::size_t accessor, const Json& part, std::size_t elementSize) {
    const std::size_t view = IndexMember(part, "bufferView");
    const auto bytes = document.ViewBytes(view);
    if (!bytes) FailWithoutData(document, accessor);
    const Json& json = document.Elements(Kind::kBufferView)[view];
    return {*bytes, IndexMember(part, "byteOffset"), IndexMember(json, "byteStride", elementSize)};
}

template <typename Stored>
float ToFloat(Stored value, bool normalized) {
    if constexpr (!std::is_same_v<Stored, float>) {
        // Signed types have one value below -1.
        if (normalized)
            return std::max(
                static_cast<float>(value) / static_cast<float>(std::numeric_limits<Stored>::max()), -1.0F);
    }
    return static_cast<float>(value);
}

template <typename Stored, typename Out>
void CopyElements(const AccessorInfo& info, const Source& source, std::size_t from, std::size_t count,
                  Out* out) {
    const std::byte* element = source.bytes.data() + source.offset + from * source.stride;
    const std::size_t columnSize = info.ColumnSize();
    for (std::size_t i = 0; i < count; ++i, element += source.stride) {
        for (unsigned column = 0; column < info.shape.columns; ++column) {
            const std::byte* at = element + column * columnSize;
            for (unsigned row = 0; row < info.shape.rows; ++row, at += sizeof(Stored)) {
                Stored value;
                std::memcpy(&value, at, sizeof value);
                if constexpr (std::is_same_v<Out, float>)
                    *out++ = ToFloat(value, info.normalized);
                else
                    *out++ = static_cast<Out>(value);
            }
        }
    }
}

template <typename Out>
void Copy(const AccessorInfo& info, const Source& source, std::size_t from, std::size_t count, Out* out) {
    switch (info.component) {
        case Component::kByte:
            return CopyElements<std::int8_t>(info, source, from, count, out);
        case Component::kUnsignedByte:
            return CopyElements<std::uint8_t>(info, source, from, count, out);
        case Component::kShort:
            return CopyElements<std::int16_t>(info, source, from, count, out);
        case Component::kUnsignedShort:
            return CopyElements<std::uint16_t>(info, source, from, count, out);
        case Component::kUnsignedInt:
            return CopyElements<std::uint32_t>(info, source, from, count, out);
        case Component::kFloat:
            // ReadIntegers is never used on a float accessor.
            if constexpr (std::is_same_v<Out, float>) CopyElements<float>(info, source, from, count, out);
    }
}

template <typename Out>
std::vector<Out> Read(const Document& document, std::size_t accessor) {
    const Json& json = document.Elements(Kind::kAccessor)[accessor];
    const AccessorInfo info = Describe(document, accessor);
    const std::size_t components = info.shape.Components();
    std::optional<Source> base;
    if (const auto supplied = document.SuppliedBytes(accessor))
        base = Source{*supplied, 0, info.ElementSize()};
    else if (json.Find("bufferView") != nullptr)
        base = Locate(document, accessor, json, info.ElementSize());
    std::vector<Out> values(info.count * components);
    if (base) Copy(info, *base, 0, info.count, values.data());

    const Json* sparse = json.Find("sparse");
    if (sparse == nullptr || document.SuppliedBytes(accessor)) return values;
    AccessorInfo places;
    places.component = static_cast<Component>(IndexMember(*sparse->Find("indices"), "componentType"));
    places.count = IndexMember(*sparse, "count");
    std::vector<std::uint32_t> indices(places.count);
    const Source at = Locate(document, accessor, *sparse->Find("indices"), places.ElementSize());
    Copy(places, at, 0, places.count, indices.data());
    const Source source = Locate(document, accessor, *sparse->Find("values"), info.ElementSize());
    for (std::size_t i = 0; i < indices.size(); ++i)
        Copy(info, source, i, 1, values.data() + indices[i] * components);
    return values;
}

Json NewAccessor(Document& document, std::size_t view, Component component, std::size_t count,
                 std::string_view type) {
    JsonTree& tree = document.Tree();
    Json json = JsonTree::MakeObject();
    tree.Member(json, "bufferView") = tree.MakeIndex(view);
    tree.Member(json, "componentType") = tree.MakeIndex(static_cast<std::uint64_t>(component));
    tree.Member(json, "count") = tree.MakeIndex(count);
    tree.Member(json, "type") = tree.MakeString(type);
    return json;
}

constexpr unsigned kVertexTarget = 34962;
constexpr unsigned kIndexTarget = 34963;

}  // namespace

std::size_t SizeOf(std::uint64_t component) {
    switch (component) {
        case 5120:
        case 5121:
            return 1;
        case 5122:
        case 5123:
            return 2;
        case 5125:
        case 5126:
            return 4;
        default:
            return 0;
    }
}

std::optional<ElementShape> ShapeOf(std::string_view type) {
    struct Entry {
        std::string_view name;
        ElementShape shape;
    };
    static constexpr Entry kTypes[] = {{"SCALAR", {1, 1}}, {"VEC2", {2, 1}}, {"VEC3", {3, 1}},
                                       {"VEC4", {4, 1}},   {"MAT2", {2, 2}}, {"MAT3", {3, 3}},
                                       {"MAT4", {4, 4}}};
    for (const Entry& entry : kTypes)
        if (entry.name == type) return entry.shape;
    return std::nullopt;
}

std::size_t AccessorInfo::ColumnSize() const {
    const std::size_t size = ComponentSize() * shape.rows;
    return shape.columns == 1 ? size : (size + 3) & ~std::size_t{3};
}

AccessorInfo Describe(const Document& document, std::size_t accessor) {
    const Json& json = document.Elements(Kind::kAccessor)[accessor];
    AccessorInfo info;
    for (const JsonMember& member : json.Members()) {
        const std::string_view name = member.Name();
        if (name == "componentType")
            info.component = static_cast<Component>(*member.value.Index());
        else if (name == "count")
            info.count = static_cast<std::size_t>(*member.value.Index());
        else if (name == "type")
            info.shape = *ShapeOf(member.value.String());
        else if (name == "normalized")
            info.normalized = member.value.Bool();
    }
    return info;
}

bool HasData(const Document& document, std::size_t accessor) {
    if (document.IsWithheld(accessor)) return false;
    if (document.SuppliedBytes(accessor)) return true;
    const Json& json = document.Elements(Kind::kAccessor)[accessor];
    const auto stored = [&](const Json* part) {
        return part == nullptr || part->Find("bufferView") == nullptr ||
               document.ViewBytes(IndexMember(*part, "bufferView")).has_value();
    };
    const Json* sparse = json.Find("sparse");
    return stored(&json) &&
           (sparse == nullptr || (stored(sparse->Find("indices")) && stored(sparse->Find("values"))));
}

std::span<const float> StoredFloats(const Document& document, std::size_t accessor) {
    const Json& json = document.Elements(Kind::kAccessor)[accessor];
    const AccessorInfo info = Describe(document, accessor);
    const bool isPlain = info.component == Component::kFloat && json.Find("bufferView") != nullptr &&
                         json.Find("sparse") == nullptr && !document.SuppliedBytes(accessor);
    if (!isPlain || !HasData(document, accessor)) return {};
    const Source source = Locate(document, accessor, json, info.ElementSize());
    const std::byte* const first = source.bytes.data() + source.offset;
    const bool isAligned = reinterpret_cast<std::uintptr_t>(first) % alignof(float) == 0;
    if (!isAligned || source.stride != info.ElementSize()) return {};
    return {reinterpret_cast<const float*>(first), info.count * info.shape.Components()};
}

std::vector<float> ReadFloats(const Document& document, std::size_t accessor) {
    return Read<float>(document, accessor);
}

std::vector<std::uint32_t> ReadIntegers(const Document& document, std::size_t accessor) {
    return Read<std::uint32_t>(document, accessor);
}

std::size_t AppendFloats(Document& document, std::string_view type, Use use, std::span<const float> values) {
    std::optional<std::size_t> view;
    return AppendFloats(document, type, use, values, view);
}

std::size_t AppendFloats(Document& document, std::string_view type, Use use, std::span<const float> values,
                         std::optional<std::size_t>& view) {
    const unsigned components = ShapeOf(type)->Components();
    if (!std::all_of(values.begin(), values.end(), [](float value) { return std::isfinite(value); }))
        document.Fail(ErrorKind::kNumber, Join("/accessors/", document.Elements(Kind::kAccessor).size()),
                      "a number to be written is not finite");
    JsonTree& tree = document.Tree();
    const Bytes bytes = std::as_bytes(values);
    const auto offset = view ? document.ExtendView(*view, bytes) : std::nullopt;
    if (!offset) {
        const bool isVertexData = use == Use::kPosition || use == Use::kAttribute;
        view = document.AppendView(bytes, isVertexData ? kVertexTarget : 0, 0);
    }
    Json json = NewAccessor(document, *view, Component::kFloat, values.size() / components, type);
    if (offset) tree.Member(json, "byteOffset") = tree.MakeIndex(*offset);
    if ((use == Use::kPosition || use == Use::kKeyTimes) && !values.empty()) {
        std::vector<float> low(values.begin(), values.begin() + components), high = low;
        for (std::size_t c = 0; c < components; ++c) {
            float least = low[c], most = high[c];
            for (std::size_t i = c; i < values.size(); i += components) {
                least = std::min(least, values[i]);
                most = std::max(most, values[i]);
            }
            low[c] = least;
            high[c] = most;
        }
        tree.Member(json, "min") = tree.MakeNumbers(low);
        tree.Member(json, "max") = tree.MakeNumbers(high);
    }
    return document.Append(Kind::kAccessor, json);
}

std::size_t AppendIndices(Document& document, std::span<const std::uint32_t> values) {
    const std::uint32_t highest = values.empty() ? 0 : *std::max_element(values.begin(), values.end());
    std::size_t view = 0;
    Component component = Component::kUnsignedInt;
    if (highest < 0xFFFF) {
        const std::vector<std::uint16_t> narrow(values.begin(), values.end());
        view = document.AppendView(std::as_bytes(std::span(narrow)), kIndexTarget, 0);
        component = Component::kUnsignedShort;
    } else {
        view = document.AppendView(std::as_bytes(values), kIndexTarget, 0);
    }
    return document.Append(Kind::kAccessor, NewAccessor(document, view, component, values.size(), "SCALAR"));
}

}  // namespace zr::gltf
