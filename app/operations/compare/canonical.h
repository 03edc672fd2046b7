// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <string_view>

#include "gltf/document.h"
#include "gltf/schema.h"
#include "gltf/walk.h"

namespace zr::compare {

enum class Names { kCount, kIgnore };

// The content of an element as text. Equal content gives equal text, regardless of order, indices and
// storage: members are sorted, default values left out, numbers rounded to floats, and references replaced by
// the content of their targets. Nodes, meshes and other materials appear by name only.
class Canonical {
public:
    Canonical(const gltf::Document& document, Names names) : m_document(document), m_names(names) {}

    const std::string& Of(gltf::Kind kind, std::size_t index);

private:
    std::string NameOf(const gltf::Target& target) const;
    void Write(const gltf::Json& json, const gltf::SchemaNode* schema, std::string_view name,
               std::string& text);
    void WriteMembers(const gltf::Json& object, const gltf::SchemaNode* schema, std::string& text);

    const gltf::Document& m_document;
    const Names m_names;
    std::array<std::map<std::size_t, std::string>, gltf::kKinds> m_known;
};

}  // namespace zr::compare
