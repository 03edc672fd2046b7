// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

#include "gltf/document.h"

namespace zr::gltf {

enum class Component : std::uint32_t {
    kByte = 5120,
    kUnsignedByte = 5121,
    kShort = 5122,
    kUnsignedShort = 5123,
    kUnsignedInt = 5125,
    kFloat = 5126,
};

// Bytes per component, or 0 for an unknown component type.
std::size_t SizeOf(std::uint64_t component);

// The shape of an accessor type ("VEC3": 3 rows, 1 column; "MAT4": 4 and 4), or nothing for an unknown name.
struct ElementShape {
    unsigned rows = 1;
    unsigned columns = 1;

    unsigned Components() const { return rows * columns; }
};
std::optional<ElementShape> ShapeOf(std::string_view type);

// The layout of an accessor's elements.
struct AccessorInfo {
    Component component = Component::kFloat;
    ElementShape shape;
    std::size_t count = 0;
    bool normalized = false;

    std::size_t ComponentSize() const { return SizeOf(static_cast<std::uint64_t>(component)); }
    // Bytes from one column to the next (matrix columns start at multiples of 4), and of a whole element.
    std::size_t ColumnSize() const;
    std::size_t ElementSize() const { return ColumnSize() * shape.columns; }
    // Bytes of the last element, which needs no padding after its last column.
    std::size_t LastElementSize() const {
        return ColumnSize() * (shape.columns - 1) + ComponentSize() * shape.rows;
    }
};

// For a checked document; `accessor` must be in range.
AccessorInfo Describe(const Document& document, std::size_t accessor);

// Whether the elements can be read: they are stored uncompressed, or a decoder supplied them. An accessor
// without a view reads as zeros (overlaid by its sparse values).
bool HasData(const Document& document, std::size_t accessor);

// The floats that ReadFloats would return, in place; empty when they are supplied, stored in another form,
// sparse, misaligned or have gaps. Valid as long as Document::ViewBytes.
std::span<const float> StoredFloats(const Document& document, std::size_t accessor);

// All components, element by element, matrices column by column; normalized integers as the fractions they
// represent, other integers as they are. Throws Error (kBounds) when there is no data.
std::vector<float> ReadFloats(const Document& document, std::size_t accessor);
// The same for integer components (negative ones wrap); for vertex indices and joints.
std::vector<std::uint32_t> ReadIntegers(const Document& document, std::size_t accessor);

// What a new accessor is for; decides the view's target and whether bounds are written.
enum class Use {
    kPosition,  // bounds
    kAttribute,
    kKeyTimes,  // bounds
    kKeyValues,
    kInverseBinds,
};

// Adds an accessor of floats with a view of its own and returns its index. values.size() is a multiple of the
// components of `type` and not 0. Throws Error (kNumber) and adds nothing unless all values are finite.
std::size_t AppendFloats(Document& document, std::string_view type, Use use, std::span<const float> values);
// The same in a view that several accessors share, which is not for vertex data. `view` is empty before the
// first call and holds the view afterwards.
std::size_t AppendFloats(Document& document, std::string_view type, Use use, std::span<const float> values,
                         std::optional<std::size_t>& view);
// Adds an accessor of vertex indices (at least one) and returns its index. The indices have 16 bits where all
// are below 0xFFFF, the primitive restart value, else 32.
std::size_t AppendIndices(Document& document, std::span<const std::uint32_t> values);

}  // namespace zr::gltf
