// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "gltf/document.h"
#include "gltf/walk.h"

namespace zr::gltf {

// One index (or pointer) that names an element.
struct Reference {
    Target target;
    std::optional<Place::Element> owner;  // the element the reference stands in; none: the document itself
    Cut cut;                              // what goes when the target goes
    Json& value;                          // the index or pointer; may get another of the same type
    const Place& place;
};
// Calls visit for every reference of the document to an element of `kinds`, in document order.
void ForEachReference(Document& document, KindSet kinds, const std::function<void(const Reference&)>& visit);

// Content that may refer to elements in a way that cannot be followed: unknown extensions, and known ones
// that compute the index when they run.
struct OpaqueUse {
    std::string extension;
    std::string place;
    KindSet kinds;
};
struct Opaque {
    KindSet kinds;  // of all uses
    std::vector<OpaqueUse> uses;
};
Opaque OpaqueReferences(Document& document);

// Both in one pass, as a table that holds while the document stays as it is. The links are those to elements
// of `kinds`.
struct ReferenceTable {
    struct Link {
        std::uint32_t target;
        std::uint32_t owner;
        Kind targetKind;
        Kind ownerKind;  // kCount: the document itself
    };
    std::vector<Link> links;
    Opaque opaque;
};
ReferenceTable ListReferences(Document& document, KindSet kinds);

// Elements to take out, by kind and index; vectors may be shorter than the collection.
using Removal = std::array<std::vector<bool>, kKinds>;

// Takes the elements out and mends every reference. References to them from what stays are cut away as the
// rules say; containers this empties go too (a list of children, an extension's object), an animation without
// channels goes as a whole, and names leave extensionsUsed when nothing of theirs is left. Throws Error
// (kReference), nothing changed, when a reference must not lose its element (a joint, an attribute).
void RemoveElements(Document& document, const Removal& removal);

}  // namespace zr::gltf
