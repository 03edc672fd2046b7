// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <deque>
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
    std::optional<Place::Element>
        owner;    // the element that contains the reference; none: the document itself
    Cut cut;      // what is removed with the target
    Json& value;  // the index or pointer; may be replaced by another of the same type
    const Place& place;
};
// Calls visit for every reference of the document to an element of `kinds`, in document order.
void ForEachReference(Document& document, KindSet kinds, const std::function<void(const Reference&)>& visit);

// Content that may refer to elements in ways that cannot be followed: unknown extensions, and known ones that
// compute indices at run time.
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

// Elements by kind and index; vectors may be shorter than the collection.
using ElementSet = std::array<std::vector<bool>, kKinds>;

// References and opaque uses, found in one pass. Valid until the document is edited.
struct ReferenceTable {
    struct Link {
        std::uint32_t target;
        std::uint32_t owner;
        Kind targetKind;
        Kind ownerKind;
    };
    std::deque<Link> links;  // from elements of `kinds` to others of them
    ElementSet held;         // those of `kinds` that anything else refers to
    Opaque opaque;
};
ReferenceTable ListReferences(Document& document, KindSet kinds);

using Removal = ElementSet;  // elements to remove

// Removes the elements and updates every reference. References to them from what stays are removed as the
// rules say; so are containers that become empty (a list of children, an extension's object), animations
// without channels, and names in extensionsUsed of which nothing is left. Throws Error (kReference), with
// nothing changed, when a reference must not lose its element (a joint, an attribute).
void RemoveElements(Document& document, const Removal& removal);

}  // namespace zr::gltf
