// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string_view>
#include <unordered_map>

#include "gltf/accessor.h"
#include "gltf/document.h"

namespace zr::gltf {

// Adds the times and values of keys to a document, all in one view. What a sampler of the document has
// already is not stored again. No accessor may be removed while it is in use.
class KeyAccessors {
public:
    // The document must outlive it.
    explicit KeyAccessors(Document& document) : m_document(document) {}

    // The accessor of the times, or of the values, whose accessor type is `type`. Throws Error as
    // AppendFloats.
    std::size_t Times(std::span<const float> times);
    std::size_t Values(std::string_view type, std::span<const float> values);

private:
    using Stored = std::unordered_multimap<std::size_t, std::size_t>;  // accessors by the hash of their bytes

    void List();
    const std::size_t* Find(const Stored& stored, std::size_t hash, std::string_view type,
                            std::span<const float> floats) const;
    std::size_t Place(Stored& stored, std::string_view type, Use use, std::span<const float> floats);

    Document& m_document;
    std::optional<std::size_t> m_view;
    bool m_isListed = false;
    Stored m_times;
    Stored m_values;
};

}  // namespace zr::gltf
