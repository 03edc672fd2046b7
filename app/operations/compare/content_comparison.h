// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>

#include "gltf/document.h"
#include "gltf/schema.h"

namespace zr::compare {

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
    std::set<std::array<std::size_t, 3>> m_compared;               // by kind and both indices
    std::map<std::array<std::size_t, 3>, std::size_t> m_partners;  // by side, kind and index
};

}  // namespace zr::compare
