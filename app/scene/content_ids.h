// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/gltf/document.h"

namespace zr {

// Gives equal content equal numbers, exactly: two elements have one number only when they are the same byte
// for byte, whatever their indices and names.
class ContentIds {
public:
    explicit ContentIds(const gltf::Document& document);

    std::uint32_t Accessor(std::size_t index);
    std::uint32_t Texture(std::size_t index);
    // Any text; the numbers of different callers are of one sequence.
    std::uint32_t Text(std::string_view text);

    // A JSON value as text: members sorted by name, without `name` of the outermost object. References to
    // textures in texture infos stand as the numbers of their content.
    std::string Canonical(const gltf::Json& value);

private:
    std::uint32_t Resolved(std::string_view kind, const gltf::Json& element);
    std::uint32_t View(std::size_t index);
    std::string AccessorContent(std::size_t index) const;
    void Append(const gltf::Json& value, std::string_view holder, bool outermost, std::string& out);

    // By hash of the content, elements of which no earlier one is equal. Content itself is not kept: it is
    // read again where hashes are equal.
    using Firsts = std::unordered_multimap<std::size_t, std::size_t>;

    const gltf::Document& m_document;
    std::uint32_t m_next = 0;
    std::unordered_map<std::string, std::uint32_t> m_texts;
    Firsts m_firstAccessors;
    Firsts m_firstViews;
    std::vector<std::optional<std::uint32_t>> m_accessors;
    std::vector<std::optional<std::uint32_t>> m_textures;
    std::vector<std::optional<std::uint32_t>> m_views;
};

}  // namespace zr
