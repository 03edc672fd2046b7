// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/scene/interner.h"
#include "gltf/document.h"

namespace zr {

// Numbers content: two elements of a kind get the same number only if they are equal byte for byte, whatever
// their indices and names.
class ContentIds {
public:
    explicit ContentIds(const gltf::Document& document);

    // Sparse accessors and unreadable content equal only themselves.
    std::uint32_t Accessor(std::size_t index);
    std::uint32_t Texture(std::size_t index);
    std::uint32_t Text(std::string_view text) { return m_texts.Intern(text).number; }

    // A JSON value as text: members sorted by name, without `name` of the outermost object. References to
    // textures in texture infos are replaced by the numbers of their content.
    std::string Canonical(const gltf::Json& value);

private:
    // The numbers of elements of one kind. Content is found by a hash and compared in place, so that no copy
    // of the document's data is kept.
    struct Numbered {
        std::vector<std::uint32_t> numbers;  // by element; the index of the first one of equal content
        HashIndex firsts;
    };

    template <typename ContentOf>
    std::uint32_t Number(Numbered& elements, std::size_t index, ContentOf contentOf);
    std::uint32_t Resolved(std::string_view kind, const gltf::Json& element);
    std::uint32_t View(std::size_t index);
    void Append(const gltf::Json& value, std::string_view holder, bool outermost, std::string& out);

    const gltf::Document& m_document;
    Interner m_texts;
    Numbered m_accessors;
    Numbered m_views;
    std::vector<std::optional<std::uint32_t>> m_textures;
};

}  // namespace zr
