// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "app/operations/compare/evaluator.h"
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

// Finds differences in content between elements of two documents.
class ContentComparison {
public:
    // Decides whether two references (to nodes, meshes, materials and so on) mean the same element.
    using SameElement = std::function<bool(gltf::Kind kind, std::size_t a, std::size_t b)>;
    // where: place in the first document; what: both values in words; amount: for numbers, relative to the
    // greater one, at least 1.
    using OnDifference =
        std::function<void(const std::string& where, const std::string& what, double amount)>;
    // tolerance: of numbers, relative to the greater one, at least 1.
    ContentComparison(const gltf::Document& a, const gltf::Document& b, double tolerance, SameElement same,
                      OnDifference onDifference);

    // Compares two elements and what they refer to; each pair only once. Skips members that decide what is
    // drawn (primitives, transforms, children, joints), which is compared separately.
    void Elements(gltf::Kind kind, std::size_t a, std::size_t b);
    // Compares two values at a place; null: the value is missing.
    void Values(const gltf::Json* a, const gltf::Json* b, const gltf::SchemaNode* schema,
                const std::string& place);

    // The element of the other document that an element was first compared with; kNone: none.
    std::size_t PartnerInB(gltf::Kind kind, std::size_t a) const { return Partner(0, kind, a); }
    std::size_t PartnerInA(gltf::Kind kind, std::size_t b) const { return Partner(1, kind, b); }

private:
    void Members(const gltf::Json& a, const gltf::Json& b, const gltf::SchemaNode* schema,
                 const std::string& place, const std::function<bool(std::string_view)>& skip);
    void References(const gltf::Rule& rule, const gltf::Json& a, const gltf::Json& b,
                    const std::string& place);
    std::size_t Partner(std::size_t side, gltf::Kind kind, std::size_t index) const;
    void Accessors(std::size_t a, std::size_t b, const std::string& place);
    bool MayNameTheSame(const gltf::Json& a, const gltf::Json& b, const std::string& place) const;
    void Numbers(double a, double b, const std::string& place);

    const gltf::Document& m_a;
    const gltf::Document& m_b;
    const double m_tolerance;
    SameElement m_same;
    OnDifference m_onDifference;
    std::map<std::array<std::size_t, 3>, bool> m_compared;
    std::map<std::array<std::size_t, 3>, std::size_t> m_partners;  // by side, kind and index
};

// The bytes of an image, from its view, its data URI or its file beside the document; empty if they cannot be
// read.
std::vector<std::byte> ImageBytes(const gltf::Document& document, const gltf::Json& image);

// |a - b|, divided by the greater magnitude if that is above 1.
double ValueDifference(double a, double b);

}  // namespace zr::compare
