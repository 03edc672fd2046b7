// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "gltf/json.h"
#include "gltf/schema.h"

namespace zr::gltf {

// The path from the root to a value. Names are views of the document's text.
class Place {
public:
    struct Step {
        std::string_view member;  // or, when isItem, the number of an item
        std::size_t item;
        bool isItem;
        Json* value;  // the value there
    };

    explicit Place(Json& root) { m_steps.push_back({{}, 0, false, &root}); }

    void Push(std::string_view member, Json& value) { m_steps.push_back({member, 0, false, &value}); }
    void Push(std::size_t item, Json& value) { m_steps.push_back({{}, item, true, &value}); }
    void Pop() { m_steps.pop_back(); }

    // From the root (a step without a name) to the value itself.
    std::span<const Step> Steps() const { return m_steps; }

    std::string Pointer() const;
    // The element that contains the place, if any.
    struct Element {
        Kind kind;
        std::size_t index;
    };
    const std::optional<Element>& Owner() const { return m_owner; }
    void SetOwner(const std::optional<Element>& owner) { m_owner = owner; }

private:
    std::vector<Step> m_steps;
    std::optional<Element> m_owner;
};

// The target of a reference: an element and, for pointers, the position of the index in the pointer's text.
struct Target {
    Kind kind;
    std::size_t index;
    std::size_t textOffset = 0;
    std::size_t textSize = 0;
};

// The element that a pointer leads into ("/nodes/3/translation": node 3), if any.
std::optional<Target> PointerTarget(std::string_view pointer);
// The target of a value under a rule of shape kIndex or kPointer; nothing when it is not an index.
std::optional<Target> TargetOf(const Rule& rule, const Json& value);

class Visitor {
public:
    virtual ~Visitor() = default;

    // A value at a place covered by rules. `schema.rule` may be null (a step on the way to rules). The
    // visitor may replace the value by another of the same type.
    virtual void Value(const SchemaNode& schema, Json& value, const Place& place) = 0;
    // An unknown extension. Its texture infos (in materials) were visited as values.
    virtual void Unknown(std::string_view extension, Json& value, const Place& place);
    // A known extension that picks elements of the kind by indices computed at run time.
    virtual void Dynamic(std::string_view extension, Kind kind, const Place& place);
};

// Visits, in document order, everything that the rules cover. Extras are skipped.
void Walk(JsonTree& tree, Visitor& visitor);
// The same for references to elements of `kinds`, and for extensions. Other values may be skipped, with
// everything that leads to no such reference.
void WalkReferences(JsonTree& tree, KindSet kinds, Visitor& visitor);

// The kinds that an unknown extension's content could refer to by index or pointer. An integer under a name
// that suggests a kind ("meshIndex") counts for that kind, under any other name for all kinds.
KindSet PossibleReferences(const Json& value);

}  // namespace zr::gltf
